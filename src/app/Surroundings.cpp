#include "app/Surroundings.h"

#include "util/Text.h"

#include <cstdlib>

namespace halvane::app {

namespace {

std::string variable(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::string() : std::string(value);
}

std::string desktopLanguage() {
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const std::string locale = variable(name);
        if (locale.empty()) continue;
        const std::string tag = util::replaced(locale.substr(0, locale.find_first_of(".@")), "_", "-");
        return tag == "C" || tag == "POSIX" ? "zh-CN" : tag;
    }
    return "zh-CN";
}

}  // namespace

Surroundings Surroundings::ofThisProcess() {
    std::error_code unreadable;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", unreadable);
    const auto prefix = program.parent_path().parent_path();
    const auto chosen = [](const char* name, const std::filesystem::path& otherwise) {
        const std::string path = variable(name);
        return path.empty() ? otherwise : std::filesystem::path(path);
    };
    return {.program = program,
            .toolRoot = chosen("HALVANE_TOOL_ROOT", prefix / "libexec/halvane"),
            .resources = chosen("HALVANE_RESOURCES", prefix / "share/halvane"),
            .server = variable("HALVANE_SERVER"),
            .language = desktopLanguage()};
}

}  // namespace halvane::app
