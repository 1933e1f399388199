#include "systools/profiles/ProfileInstaller.h"

#include "systools/Tool.h"
#include "systools/security/Pkcs12File.h"
#include "systools/security/StoreLock.h"

#include <algorithm>
#include <optional>

namespace halvane::systools {

namespace {

constexpr const char* kLockFile = ".lock";

std::vector<NetworkService::Installed> ofProfile(NetworkService& service, const std::string& owner, const std::string& identifier) {
    auto found = service.installed(owner);
    std::erase_if(found, [&](const auto& each) { return each.connection.profile != identifier; });
    return found;
}

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
    if (**stored != payload.pkcs12 && !Pkcs12File::open(**stored, payload.password))
        return toolError(kWrongPassword, "the certificate store has another certificate \"" + name + "\", with another password");
    connection.identityFile = identities_.pathOf(name);
    connection.identityPassword = payload.password;
    connection.certificateEnds = identity->certificate.ends;
    if (connection.userName.empty()) connection.userName = name;
    return {};
}

util::Result<std::vector<CompanyConnection>> ProfileInstaller::plan(const ConfigurationProfile& profile) const {
    std::vector<CompanyConnection> connections;
    for (const auto& network : profile.networks) {
        CompanyConnection connection{.profile = profile.identifier,
                                     .owner = place_.owner,
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

util::Result<void> ProfileInstaller::addAll(NetworkService& service, const std::vector<CompanyConnection>& connections) {
    std::vector<std::string> added;
    for (const auto& connection : connections) {
        auto handle = service.add(connection);
        if (handle) {
            added.push_back(*std::move(handle));
            continue;
        }
        auto error = handle.error();
        for (const auto& each : added) {
            if (auto removed = service.remove(each); !removed) error.description += "; and " + removed.error().description;
        }
        return error;
    }
    return {};
}

util::Result<void> ProfileInstaller::restore(const std::string& identifier, const std::optional<util::Bytes>& authorities) {
    if (authorities) return files_.write(authoritiesFile(identifier), *authorities);
    const auto removed = removeFiles(identifier);
    return removed ? util::Result<void>() : util::Result<void>(removed.error());
}

util::Result<std::vector<std::string>> ProfileInstaller::install(const ConfigurationProfile& profile) {
    const auto connections = plan(profile);
    if (!connections) return connections.error();
    const auto authorities = authoritiesOf(profile);
    if (!authorities) return authorities.error();
    const auto service = connect_();
    if (!service) return service.error();

    if (auto made = files_.makeDirectory(directoryOf(profile.identifier)); !made) return made.error();
    const auto lock = StoreLock::take(place_.directory / kLockFile);
    if (!lock) return lock.error();
    const auto file = authoritiesFile(profile.identifier);
    std::optional<util::Bytes> before;
    if (auto read = files_.read(file)) before = *std::move(read);
    const auto older = ofProfile(**service, place_.owner, profile.identifier);

    auto done = files_.write(file, *authorities);
    if (done) done = addAll(**service, *connections);
    if (!done) {
        const auto restored = restore(profile.identifier, before);
        auto error = done.error();
        if (!restored) error.description += "; and " + restored.error().description;
        return error;
    }
    if (auto removed = removeAll(**service, older); !removed) return removed.error();
    std::vector<std::string> names;
    for (const auto& connection : *connections)
        names.push_back((connection.medium == Medium::Wifi ? "Wi-Fi " : "wired ") + connection.network);
    return names;
}

util::Result<bool> ProfileInstaller::removeConnections(const std::string& identifier) {
    const auto service = connect_();
    if (!service) return service.error();
    const auto connections = ofProfile(**service, place_.owner, identifier);
    if (auto removed = removeAll(**service, connections); !removed) return removed.error();
    return !connections.empty();
}

util::Result<bool> ProfileInstaller::removeFiles(const std::string& identifier) {
    std::error_code error;
    const auto count = std::filesystem::remove_all(directoryOf(identifier), error);
    if (error) return util::fileError(error.value(), "remove " + directoryOf(identifier).string());
    return count > 0;
}

}  // namespace halvane::systools
