#pragma once

#include "systools/network/NetworkService.h"
#include "systools/profiles/ConfigurationProfile.h"
#include "systools/security/IdentityFiles.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace halvane::systools {

/// Turns a profile into connections, and takes them away again. What it made is known by the connections themselves,
/// each of which bears the profile's identifier and its owner's name; beside them stands one directory a profile with
/// the authorities to trust. One thread. Errors are `toolError`s.
class ProfileInstaller {
public:
    using Connect = std::function<util::Result<std::unique_ptr<NetworkService>>()>;

    struct Place {
        std::string owner;                ///< user name
        std::filesystem::path directory;  ///< of all profiles of that user
    };

    /// `files` and `identities` must outlive it. `connect` is asked when everything else was found right.
    ProfileInstaller(Place place, platform::FileStore& files, const IdentityFiles& identities, Connect connect)
        : place_(std::move(place)), files_(files), identities_(identities), connect_(std::move(connect)) {}

    /// All or nothing, in the place of an older profile of the same identifier. The identities have to be in the
    /// certificate store already: what was deleted there is not brought back by a profile. Answers the networks' names.
    util::Result<std::vector<std::string>> install(const ConfigurationProfile& profile);

    /// A removal's two parts: the first needs NetworkManager only, the second the user's files only. Each answers whether
    /// there was anything.
    util::Result<bool> removeConnections(const std::string& identifier);
    util::Result<bool> removeFiles(const std::string& identifier);

private:
    [[nodiscard]] std::filesystem::path directoryOf(const std::string& identifier) const { return place_.directory / identifier; }
    [[nodiscard]] std::filesystem::path authoritiesFile(const std::string& identifier) const {
        return directoryOf(identifier) / "authorities.pem";
    }
    util::Result<std::vector<CompanyConnection>> plan(const ConfigurationProfile& profile) const;
    util::Result<void> resolveIdentity(const ConfigurationProfile::Identity& payload, CompanyConnection& connection) const;
    static util::Result<util::Bytes> authoritiesOf(const ConfigurationProfile& profile);
    util::Result<void> restore(const std::string& identifier, const std::optional<util::Bytes>& authorities);
    static util::Result<void> addAll(NetworkService& service, const std::vector<CompanyConnection>& connections);

    const Place place_;
    platform::FileStore& files_;
    const IdentityFiles& identities_;
    const Connect connect_;
};

}  // namespace halvane::systools
