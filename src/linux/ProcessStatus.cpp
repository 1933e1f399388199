#include "linux/ProcessStatus.h"

#include <fstream>
#include <iterator>
#include <sstream>

namespace halvane::linux {

std::optional<ProcessStatus> ProcessStatus::of(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/stat", std::ios::binary);
    const std::string line(std::istreambuf_iterator<char>(file), {});
    // "PID (NAME) STATE …": the name itself may hold parentheses and spaces.
    const auto opening = line.find('(');
    const auto closing = line.rfind(')');
    if (opening == std::string::npos || closing == std::string::npos || closing < opening) return std::nullopt;
    ProcessStatus status{.name = line.substr(opening + 1, closing - opening - 1)};
    std::istringstream rest(line.substr(closing + 1));
    std::string skipped;
    constexpr int kFieldsBeforeStartTime = 19;
    for (int i = 0; i < kFieldsBeforeStartTime; ++i) rest >> skipped;
    if (!(rest >> status.startTime)) return std::nullopt;
    return status;
}

}  // namespace halvane::linux
