#include "systools/system_profiler/SystemProfilerTool.h"

#include <fmt/format.h>

#include <algorithm>

namespace halvane::systools {

namespace {

constexpr const char* kStorage = "SPStorageDataType";
constexpr const char* kUsageText =
    "usage: system_profiler SPStorageDataType\n"
    "       system_profiler -listDataTypes\n"
    "Reports the capacity of the disk that the system stands on.\n";

}  // namespace

int SystemProfilerTool::run(const Arguments& arguments, std::ostream& out, std::ostream& err) const {
    if (arguments.size() == 1 && (arguments[0] == "--help" || arguments[0] == "-h")) {
        out << kUsageText;
        return kSuccess;
    }
    if (arguments.size() == 1 && arguments[0] == "-listDataTypes") {
        out << kStorage << "\n";
        return kSuccess;
    }
    for (const auto& argument : arguments) {
        if (argument != kStorage) err << "system_profiler: there is no report " << argument << "\n";
    }
    if (std::ranges::find(arguments, kStorage) == arguments.end()) {
        err << kUsageText;
        return kUsage;
    }
    const auto bytes = capacity_();
    if (!bytes) {
        err << "system_profiler: the capacity of the disk cannot be read\n";
        return kFailure;
    }
    constexpr double kGigabyte = 1024.0 * 1024 * 1024;
    out << fmt::format("Capacity: {:.2f} GB\n", static_cast<double>(*bytes) / kGigabyte);
    return kSuccess;
}

}  // namespace halvane::systools
