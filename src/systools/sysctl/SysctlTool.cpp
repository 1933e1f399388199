#include "systools/sysctl/SysctlTool.h"

#include <algorithm>

namespace halvane::systools {

namespace {

constexpr const char* kUsageText =
    "usage: sysctl [-n] NAME...\n"
    "       sysctl [-n] -a\n"
    "Prints values of the system, with -n without their names. Exit code 1: a name is unknown here.\n";

}  // namespace

int SysctlTool::run(const Arguments& arguments, std::ostream& out, std::ostream& err) const {
    if (std::ranges::find(arguments, "--help") != arguments.end()) {
        out << kUsageText;
        return kSuccess;
    }
    bool bare = false;
    bool all = false;
    std::vector<std::string> wanted;
    for (const auto& argument : arguments) {
        if (argument == "-n") {
            bare = true;
        } else if (argument == "-a") {
            all = true;
        } else if (argument.empty() || argument.starts_with('-')) {
            err << "sysctl: no such option: " << argument << "\n" << kUsageText;
            return kUsage;
        } else {
            wanted.push_back(argument);
        }
    }
    if (all == !wanted.empty()) {
        err << kUsageText;
        return kUsage;
    }
    int code = kSuccess;
    for (const auto& name : all ? names_ : wanted) {
        if (const auto value = control_.valueByName(name)) {
            out << (bare ? "" : name + ": ") << *value << "\n";
        } else if (!all) {
            err << "sysctl: unknown name '" << name << "', or this machine does not tell it\n";
            code = kFailure;
        }
    }
    return code;
}

}  // namespace halvane::systools
