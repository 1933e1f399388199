#include "systools/profiles/ProfilesTool.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <filesystem>

namespace halvane::systools {

namespace {

Complaint complaint() { return {"profiles", ProfilesTool::usageText()}; }

}  // namespace

const char* ProfilesTool::usageText() {
    return "usage: profiles install -path FILE\n"
           "       profiles remove -path FILE | -identifier IDENTIFIER\n"
           "Makes network connections of a configuration profile, for this user alone, and takes them away again. The\n"
           "certificate to join with has to be in the certificate store (security import).\n"
           "Exit codes: 0 done, 1 it could not be done, 44 no such profile or certificate, 47 wrong certificate password,\n"
           "64 wrong arguments, 65 not a usable profile, 69 no NetworkManager, 75 no answer in time, 77 the system's policy forbids it.\n";
}

int ProfilesTool::run(const Arguments& arguments, std::ostream& out, std::ostream& err) {
    if (arguments.empty()) return complaint().misused(err, "no command");
    const std::string& command = arguments[0];
    if (command == "--help" || command == "-h" || command == "help") {
        out << usageText();
        return kSuccess;
    }
    if (command != "install" && command != "remove") return complaint().misused(err, "there is no command " + command);
    if (arguments.size() != 3) return complaint().misused(err, command + " takes one option with its value");
    const std::string& value = arguments[2];
    if (value.empty()) return complaint().misused(err, arguments[1] + " takes a value that is not empty");
    if (arguments[1] == "-path" && command == "install") return install(value, out, err);
    if (arguments[1] == "-identifier" && command == "remove") return remove(value, out, err);
    if (arguments[1] != "-path") return complaint().misused(err, command + " has no option " + arguments[1]);
    const auto profile = read(value);
    return profile ? remove(profile->identifier, out, err) : complaint().failed(err, profile.error(), value);
}

util::Result<ConfigurationProfile> ProfilesTool::read(const std::string& path) const {
    return user_.asThatUser([&]() -> util::Result<ConfigurationProfile> {
        std::error_code unknown;
        if (const auto size = std::filesystem::file_size(path, unknown); !unknown && size > ConfigurationProfile::kLargest)
            return util::dataError("is larger than 4 MiB: not a profile");
        const auto bytes = files_.read(path);
        return bytes ? ConfigurationProfile::parse(*bytes) : bytes.error();
    });
}

int ProfilesTool::install(const std::string& path, std::ostream& out, std::ostream& err) {
    // The certificate store that it goes by is the user's; so are the files that it writes.
    if (user_.isBehindAdministrator())
        return complaint().failed(err, toolError(kForbidden, "a profile is installed by the user, not by the administrator"));
    const auto profile = read(path);
    if (!profile) return complaint().failed(err, profile.error(), path);
    for (const auto& payload : profile->skipped) err << "profiles: left out, because it is of no known kind: payload " << payload << "\n";
    const auto networks = installer_.install(*profile);
    if (!networks) return complaint().failed(err, networks.error(), path);
    out << fmt::format("installed {}: {}\n", profile->identifier,
                       networks->empty() ? "no networks" : fmt::format("{}", fmt::join(*networks, ", ")));
    return kSuccess;
}

int ProfilesTool::remove(const std::string& identifier, std::ostream& out, std::ostream& err) {
    if (!ConfigurationProfile::isIdentifier(identifier)) return complaint().misused(err, "no profile has such an identifier");
    if (auto removed = installer_.remove(identifier); !removed) return complaint().failed(err, removed.error());
    out << "removed " << identifier << "\n";
    return kSuccess;
}

}  // namespace halvane::systools
