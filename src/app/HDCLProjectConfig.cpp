#include "app/HDCLProjectConfig.h"

#include "util/SharedInstance.h"

#include <ctime>

namespace halvane::app {

HDCLProjectConfig& HDCLProjectConfig::sharedProject() { return util::SharedInstance<HDCLProjectConfig>::get(); }

std::string HDCLProjectConfig::project_currentTime() const {
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    localtime_r(&now, &parts);
    char text[32];
    return {text, std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &parts)};
}

}  // namespace halvane::app
