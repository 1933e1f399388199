#include "systools/networksetup/NetworksetupTool.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <algorithm>
#include <ctime>
#include <filesystem>

namespace halvane::systools {

namespace {

Complaint complaint() { return {"networksetup", NetworksetupTool::usageText()}; }

constexpr const char* kService = "Wi-Fi";
/// The client's word for the interface of this computer, whatever it is called.
constexpr const char* kPrimaryInterface = "en0";

std::string subjectOf(const NetworkService::Attempt& attempt) {
    return attempt.device.empty() ? attempt.network : attempt.network + " on " + attempt.device;
}

/// Which of several failures to end with: the one that got furthest.
int rank(int code) {
    constexpr int kByDistance[] = {kRefused, kTimedOut, kForbidden, kFailure, kNoNetwork, kNoDevice};
    return static_cast<int>(std::ranges::find(kByDistance, code) - std::begin(kByDistance));
}

}  // namespace

const char* NetworksetupTool::usageText() {
    return "usage: networksetup -setairportnetwork en0|INTERFACE NETWORK\n"
           "       networksetup -setnetworkserviceenabled Wi-Fi on|off\n"
           "Joins a network that an installed profile describes, by radio or by cable; en0 is whichever device can. Switches\n"
           "the radios, and with them the cables that profiles use.\n"
           "Exit codes: 0 done, 1 it could not be done, 44 no such service, 45 no device, 46 no such network, 64 wrong\n"
           "arguments, 69 no NetworkManager, 75 no answer in time, 76 the network refused, or is not the company's,\n"
           "77 the system's policy forbids it.\n";
}

int NetworksetupTool::run(const Arguments& arguments, std::ostream& out, std::ostream& err) {
    if (arguments.empty()) return complaint().misused(err, "no command");
    const std::string& command = arguments[0];
    if (command == "--help" || command == "-h" || command == "-help") {
        out << usageText();
        return kSuccess;
    }
    if (command != "-setairportnetwork" && command != "-setnetworkserviceenabled")
        return complaint().misused(err, "there is no command " + command);
    if (arguments.size() != 3) return complaint().misused(err, command + " takes two values");
    if (command == "-setairportnetwork") return join(arguments[1], arguments[2], err);
    if (arguments[1] != kService)
        return complaint().failed(err, toolError(kNotFound, "there is no service " + arguments[1] + ", only " + kService));
    if (arguments[2] != "on" && arguments[2] != "off") return complaint().misused(err, "the service is switched on or off");
    return switchService(arguments[2] == "on", err);
}

std::optional<util::Error> NetworksetupTool::unusable(const CompanyConnection& connection) {
    std::error_code unknown;
    // NetworkManager would say the same as for a wrong one, and desktops would ask for a password.
    if (!std::filesystem::exists(connection.identityFile, unknown))
        return toolError(kRefused, "the certificate is not in the certificate store");
    const auto now = std::time(nullptr);
    if (connection.certificateEnds != 0 && connection.certificateEnds < now)
        return toolError(kRefused,
                         fmt::format("the certificate expired on {:%Y-%m-%d}", fmt::gmtime(std::time_t{connection.certificateEnds})));
    return std::nullopt;
}

int NetworksetupTool::join(const std::string& interface, const std::string& network, std::ostream& err) {
    if (interface.empty() || network.empty()) return complaint().misused(err, "an interface and a network have names");
    const auto service = connect_();
    if (!service) return complaint().failed(err, service.error());
    auto connections = (*service)->installed(owner_);
    std::erase_if(connections, [&](const auto& each) { return each.connection.network != network; });
    if (connections.empty()) return complaint().failed(err, toolError(kNoNetwork, "no installed profile has the network " + network));
    // Another profile may have the same network with a certificate that is still there.
    const auto why = unusable(connections.front().connection);
    std::erase_if(connections, [](const auto& each) { return unusable(each.connection).has_value(); });
    if (connections.empty()) return complaint().failed(err, *why, network);

    const auto attempts = (*service)->join(connections, interface == kPrimaryInterface ? std::nullopt : std::optional(interface));
    if (std::ranges::any_of(attempts, [](const auto& attempt) { return !attempt.why; })) return kSuccess;
    int code = kFailure;
    for (const auto& attempt : attempts) {
        const int own = complaint().failed(err, *attempt.why, subjectOf(attempt));
        if (&attempt == &attempts.front() || rank(own) < rank(code)) code = own;
    }
    return code;
}

int NetworksetupTool::switchService(bool on, std::ostream& err) {
    const auto service = connect_();
    if (!service) return complaint().failed(err, service.error());
    int code = kSuccess;
    if (auto set = (*service)->setWireless(on); !set) code = complaint().failed(err, set.error());
    // A computer whose radios are off would stay in the company's network by cable.
    auto wired = (*service)->installed(owner_);
    std::erase_if(wired, [](const auto& each) { return each.connection.medium != Medium::Wired; });
    if (!on) {
        for (const auto& each : wired) {
            if (auto left = (*service)->leave(each.handle); !left) code = complaint().failed(err, left.error(), each.connection.network);
        }
        return code;
    }
    // They stay down where they cannot be joined: that is no failure of the switch.
    std::erase_if(wired, [&](const auto& each) {
        const auto why = unusable(each.connection);
        if (why) complaint().failed(err, *why, each.connection.network);
        return why.has_value();
    });
    if (wired.empty()) return code;
    for (const auto& attempt : (*service)->join(wired, std::nullopt)) {
        if (attempt.why) complaint().failed(err, *attempt.why, subjectOf(attempt));
    }
    return code;
}

}  // namespace halvane::systools
