#include "systools/profiles/ProfileInstaller.h"

#include "systools/Tool.h"
#include "systools/security/Pkcs12File.h"
#include "systools/security/StoreLock.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <set>

namespace halvane::systools {

namespace {

constexpr const char* kLockFile = ".lock";
/// For one's turn; what NetworkManager may take comes on top of it.
constexpr std::chrono::seconds kLongestWait{4};

/// Tries all of them; the first error.
util::Result<void> removeAll(NetworkService& service, const std::vector<NetworkService::Installed>& connections) {
    util::Result<void> first;
    for (const auto& each : connections) {
        if (auto removed = service.remove(each.handle); !removed && first) first = removed;
    }
    return first;
}

}  // namespace

util::Result<void> ProfileInstaller::resolveIdentity(const ConfigurationProfile::Identity& payload, CompanyConnection& connection) const {
    const auto failure = [](const util::Error& error) {
        return toolError(error.description.starts_with("wrong password") ? kWrongPassword : kMalformed,
                         "its certificate " + error.description);
    };
    const auto identity = Pkcs12File::open(payload.pkcs12, payload.password);
    if (!identity) return failure(identity.error());
    const std::string& name = identity->certificate.commonName;
    const auto stored = identities_.read(name);
    if (!stored) return stored.error();
    if (!*stored) return toolError(kNotFound, "its certificate \"" + name + "\" is not in the certificate store; import it first");
    // The store's is the one that joins, also where a newer one has come since.
    const auto own = Pkcs12File::open(**stored, payload.password);
    if (!own || own->certificate.commonName != name)
        return toolError(kWrongPassword, "the certificate store has another certificate \"" + name + "\", with another password");
    connection.identityFile = identities_.pathOf(name);
    connection.identityPassword = payload.password;
    connection.certificateEnds = own->certificate.ends;
    if (connection.userName.empty()) connection.userName = name;
    return {};
}

util::Result<std::vector<CompanyConnection>> ProfileInstaller::plan(const ConfigurationProfile& profile) const {
    std::vector<CompanyConnection> connections;
    for (const auto& network : profile.networks) {
        CompanyConnection connection{.profile = profile.identifier,
                                     .owner = user_.name(),
                                     .medium = network.medium,
                                     .network = network.name,
                                     .hidden = network.hidden,
                                     .onlyWpa3 = network.onlyWpa3,
                                     .authoritiesFile = authoritiesFile(profile.identifier),
                                     .serverNames = network.serverNames,
                                     .userName = network.userName};
        const auto identity = std::ranges::find(profile.identities, network.identityUuid,
                                                [](const ConfigurationProfile::Identity& each) { return each.uuid; });
        if (auto resolved = resolveIdentity(*identity, connection); !resolved) return resolved.error();
        connections.push_back(std::move(connection));
    }
    return connections;
}

util::Result<util::Bytes> ProfileInstaller::authoritiesOf(const ConfigurationProfile& profile) {
    util::Bytes all;
    for (const auto& root : profile.roots) {
        const auto certificate = Certificate::parseFile(root);
        if (!certificate) return toolError(kMalformed, "its root certificate is " + certificate.error().description);
        if (!certificate->isAuthority)
            return toolError(kMalformed, "its root certificate \"" + certificate->commonName + "\" is no authority's");
        all += certificate->pem();
    }
    return all;
}

util::Result<StoreLock> ProfileInstaller::takeTurn() {
    return user_.asThatUser([this]() -> util::Result<StoreLock> {
        if (auto made = files_.makeDirectory(directory_); !made) return made.error();
        auto lock = StoreLock::take(directory_ / kLockFile, kLongestWait);
        if (lock || lock.error().domain != util::kServiceErrorDomain) return lock;
        return toolError(kTimedOut, lock.error().description);
    });
}

std::vector<NetworkService::Installed> ProfileInstaller::connectionsOf(NetworkService& service, const std::string& identifier) const {
    auto found = service.installed(user_.name());
    std::erase_if(found, [&](const auto& each) { return each.connection.profile != identifier; });
    return found;
}

util::Result<void> ProfileInstaller::make(NetworkService& service, const std::vector<CompanyConnection>& connections,
                                          const util::Bytes& authorities) {
    for (const auto& connection : connections) {
        if (auto made = files_.makeDirectory(connection.authoritiesFile.parent_path()); !made) return made;
        if (auto written = files_.write(connection.authoritiesFile, authorities); !written) return written;
        if (auto added = service.add(connection); !added) return added.error();
    }
    return {};
}

util::Error ProfileInstaller::undo(NetworkService& service, const Work& work, util::Error error) {
    // By looking, not by what was answered: an order whose answer came too late was carried out all the same.
    std::set<std::string> olderHandles;
    for (const auto& each : work.older) olderHandles.insert(each.handle);
    auto made = connectionsOf(service, work.identifier);
    std::erase_if(made, [&](const auto& each) { return olderHandles.contains(each.handle); });
    const auto note = [&error](const auto& done) {
        if (!done) error.description += "; and " + done.error().description;
    };
    note(removeAll(service, made));
    if (work.authorities) {
        note(files_.write(authoritiesFile(work.identifier), *work.authorities));
    } else {
        note(removeFiles(work.identifier, {}));
    }
    return error;
}

util::Result<std::vector<std::string>> ProfileInstaller::install(const ConfigurationProfile& profile) {
    const auto connections = plan(profile);
    if (!connections) return connections.error();
    const auto authorities = authoritiesOf(profile);
    if (!authorities) return authorities.error();

    // Whoever connects earlier sees the connections as they were before another installation.
    const auto turn = takeTurn();
    if (!turn) return turn.error();
    const auto service = connect_();
    if (!service) return service.error();
    Work work{.identifier = profile.identifier, .older = connectionsOf(**service, profile.identifier)};
    if (auto read = files_.read(authoritiesFile(profile.identifier))) work.authorities = *std::move(read);

    if (auto made = make(**service, *connections, *authorities); !made) return undo(**service, work, made.error());
    if (auto removed = removeAll(**service, work.older); !removed) return removed.error();
    std::vector<std::string> names;
    for (const auto& connection : *connections)
        names.push_back((connection.medium == Medium::Wifi ? "Wi-Fi " : "wired ") + connection.network);
    return names;
}

util::Result<void> ProfileInstaller::remove(const std::string& identifier) {
    const auto turn = takeTurn();
    if (!turn) return turn.error();
    const auto service = connect_();
    if (!service) return service.error();
    const auto connections = connectionsOf(**service, identifier);
    if (auto removed = removeAll(**service, connections); !removed) return removed;
    const auto hadFiles = user_.asThatUser([&] { return removeFiles(identifier, connections); });
    if (!hadFiles) return hadFiles.error();
    if (connections.empty() && !*hadFiles) return toolError(kNotFound, "there is no profile " + identifier);
    return {};
}

util::Result<bool> ProfileInstaller::removeFiles(const std::string& identifier, const std::vector<NetworkService::Installed>& connections) {
    // Behind the administrator nobody knows where the user keeps their data; the connections do.
    std::set<std::filesystem::path> directories{directoryOf(identifier)};
    for (const auto& each : connections) {
        const auto& file = each.connection.authoritiesFile;
        if (file.filename() == kAuthoritiesFile && file.parent_path().filename() == identifier) directories.insert(file.parent_path());
    }
    bool any = false;
    for (const auto& directory : directories) {
        std::error_code error;
        any = std::filesystem::remove_all(directory, error) > 0 || any;
        if (error) return util::fileError(error.value(), "remove " + directory.string());
    }
    return any;
}

}  // namespace halvane::systools
