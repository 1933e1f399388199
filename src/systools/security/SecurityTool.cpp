#include "systools/security/SecurityTool.h"

#include "util/Text.h"

#include <fmt/format.h>

#include <cerrno>

namespace halvane::systools {

namespace {

Complaint complaint() { return {"security", SecurityTool::usageText()}; }

constexpr const char* kKeychain = "login.keychain";
constexpr std::string_view kFromEnvironment = "env:";

int failed(std::ostream& err, const std::string& message) {
    err << "security: " << message << "\n";
    return kFailure;
}

}  // namespace

const char* SecurityTool::usageText() {
    return "usage: security import FILE -k login.keychain -P PASSWORD|env:NAME\n"
           "       security find-identity\n"
           "       security delete-certificate -c COMMON-NAME\n"
           "Keeps the user's certificates with their private keys, in the certificate database that browsers read\n"
           "and in identity files for network connections. -P env:NAME takes the password from the environment.\n"
           "Exit codes: 0 done, 1 it could not be done, 44 no certificate of that name, 64 wrong arguments.\n";
}

int SecurityTool::run(const Arguments& arguments, std::ostream& out, std::ostream& err) {
    if (arguments.empty()) return complaint().misused(err, "no command");
    const std::string& command = arguments.front();
    const Arguments rest(arguments.begin() + 1, arguments.end());
    if (command == "--help" || command == "-h" || command == "help") {
        out << usageText();
        return kSuccess;
    }
    if (command == "import") return import(rest, out, err);
    if (command == "find-identity") return findIdentity(rest, out, err);
    if (command == "delete-certificate") return deleteCertificate(rest, out, err);
    return complaint().misused(err, "there is no command " + command);
}

int SecurityTool::import(const Arguments& arguments, std::ostream& out, std::ostream& err) {
    std::optional<std::string> path;
    std::optional<std::string> keychain;
    std::optional<std::string> password;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        std::optional<std::string>* slot = argument == "-k" ? &keychain : argument == "-P" ? &password : nullptr;
        if (slot != nullptr) {
            if (i + 1 == arguments.size() || *slot) return complaint().misused(err, argument + " takes one value, once");
            *slot = arguments[++i];
        } else if (argument.starts_with('-')) {
            return complaint().misused(err, "import has no option " + argument);
        } else if (path) {
            return complaint().misused(err, "import takes one file");
        } else {
            path = argument;
        }
    }
    if (!path || path->empty()) return complaint().misused(err, "import needs a file");
    if (keychain && *keychain != kKeychain) return complaint().misused(err, "there is no keychain " + *keychain + ", only " + kKeychain);
    if (!password) return complaint().misused(err, "import needs a password (-P); it asks for none");
    if (password->starts_with(kFromEnvironment)) {
        const std::string name = password->substr(kFromEnvironment.size());
        password = variable_(name.c_str());
        if (!password) return failed(err, "the environment variable " + name + ", which should hold the password, is not set");
    }
    return importFile(*path, *password, out, err);
}

int SecurityTool::importFile(const std::string& path, const std::string& password, std::ostream& out, std::ostream& err) {
    const auto bytes = files_.read(path);
    if (!bytes) return failed(err, bytes.error().description);
    const auto imported = store_.import(*bytes, password);
    if (!imported) {
        const bool aboutFile = imported.error().domain == util::kDataErrorDomain;
        return failed(err, (aboutFile ? path + ": " : "") + imported.error().description);
    }
    for (const auto& remark : imported->remarks) err << "security: " << remark << "\n";
    out << "1 identity imported.\n";
    return kSuccess;
}

int SecurityTool::findIdentity(const Arguments& arguments, std::ostream& out, std::ostream& err) {
    if (!arguments.empty()) return complaint().misused(err, "find-identity takes no arguments");
    const auto identities = store_.identities();
    if (!identities) return failed(err, identities.error().description);
    std::size_t number = 0;
    for (const auto& identity : *identities) {
        out << fmt::format("  {}) {} \"{}\"\n", ++number, identity.fingerprint, util::withoutControls(identity.commonName));
        if (!store_.hasFile(identity.commonName))
            err << "security: network connections cannot use \"" << util::withoutControls(identity.commonName)
                << "\": it was not imported by this program\n";
    }
    out << fmt::format("     {} identities found\n", number);
    return kSuccess;
}

int SecurityTool::deleteCertificate(const Arguments& arguments, std::ostream&, std::ostream& err) {
    if (arguments.size() != 2 || arguments[0] != "-c" || arguments[1].empty())
        return complaint().misused(err, "delete-certificate takes -c and a name");
    const auto removed = store_.remove(arguments[1]);
    if (!removed) return failed(err, removed.error().description);
    if (*removed) return kSuccess;
    err << "security: there is no certificate of the name \"" << util::withoutControls(arguments[1]) << "\"\n";
    return kNotFound;
}

}  // namespace halvane::systools
