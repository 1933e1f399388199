#include "linux/ToolRoot.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace halvane::linux {

namespace {

constexpr std::array<std::string_view, 6> kSystemTools = {"/usr/sbin/scutil",  "/usr/sbin/sysctl",  "/usr/sbin/system_profiler",
                                                          "/usr/bin/security", "/usr/bin/profiles", "/usr/sbin/networksetup"};

}  // namespace

std::string ToolRoot::programFor(const std::string& launchPath) const {
    const auto underRoot = directory_ / std::filesystem::path(launchPath).relative_path();
    std::error_code ignored;
    const bool isSystemTool = std::ranges::find(kSystemTools, launchPath) != kSystemTools.end();
    return isSystemTool || std::filesystem::exists(underRoot, ignored) ? underRoot.string() : launchPath;
}

}  // namespace halvane::linux
