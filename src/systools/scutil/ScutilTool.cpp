#include "systools/scutil/ScutilTool.h"

#include "linux/device/Assignments.h"
#include "linux/device/LinuxSystemControl.h"

#include <algorithm>
#include <cctype>

namespace halvane::systools {

namespace {

constexpr const char* kUsageText =
    "usage: scutil --get HostName|LocalHostName|ComputerName\n"
    "Prints one of this computer's names. Exit code 1: it is not set.\n";

}  // namespace

int ScutilTool::run(const Arguments& arguments, std::ostream& out, std::ostream& err) const {
    if (arguments.size() == 1 && (arguments[0] == "--help" || arguments[0] == "-h")) {
        out << kUsageText;
        return kSuccess;
    }
    if (arguments.size() != 2 || arguments[0] != "--get") {
        err << kUsageText;
        return kUsage;
    }
    const std::string& key = arguments[1];
    std::optional<std::string> name;
    if (key == "HostName") {
        name = hostName();
    } else if (key == "LocalHostName") {
        name = localHostName();
    } else if (key == "ComputerName") {
        name = computerName();
    } else {
        err << "scutil: there is no name \"" << key << "\"\n" << kUsageText;
        return kUsage;
    }
    if (!name) {
        err << "scutil: " << key << " is not set\n";
        return kFailure;
    }
    out << *name << "\n";
    return kSuccess;
}

std::optional<std::string> ScutilTool::hostName() const {
    auto name = linux::LinuxSystemControl(files_).valueByName("kern.hostname");
    // How the kernel says that nobody has set it yet.
    return name == "(none)" ? std::nullopt : name;
}

std::optional<std::string> ScutilTool::localHostName() const {
    const auto name = hostName();
    if (!name) return std::nullopt;
    std::string label = name->substr(0, name->find('.'));
    std::ranges::replace_if(
        label, [](unsigned char c) { return c >= 0x80 || (std::isalnum(c) == 0 && c != '-' && c != '_'); }, '-');
    return label.empty() ? std::nullopt : std::optional(label);
}

std::optional<std::string> ScutilTool::computerName() const {
    const auto values = linux::assignments(files_.text("etc/machine-info").value_or(""));
    const auto pretty = values.find("PRETTY_HOSTNAME");
    return pretty == values.end() ? hostName() : pretty->second;
}

}  // namespace halvane::systools
