#pragma once

#include "systools/CallingUser.h"
#include "systools/network/NetworkService.h"
#include "systools/profiles/ConfigurationProfile.h"
#include "systools/security/IdentityFiles.h"
#include "systools/security/StoreLock.h"

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

    /// `directory`: of all that user's profiles. `files` and `identities` must outlive it.
    ProfileInstaller(CallingUser user, std::filesystem::path directory, platform::FileStore& files, const IdentityFiles& identities,
                     Connect connect)
        : user_(std::move(user)), directory_(std::move(directory)), files_(files), identities_(identities), connect_(std::move(connect)) {}

    /// All or nothing, in the place of an older profile of the same identifier. The identities have to be in the
    /// certificate store already: what was deleted there is not brought back by a profile. Answers the networks' names.
    /// Should NetworkManager not give up what it had of the older profile, the error says so and both are there; the next
    /// installation or removal takes all of it.
    util::Result<std::vector<std::string>> install(const ConfigurationProfile& profile);

    /// Works for the calling user also behind the administrator: NetworkManager is asked with all rights, files are
    /// touched with that user's. Error kNotFound: no such profile.
    util::Result<void> remove(const std::string& identifier);

private:
    /// An installation under way: what there was of the profile before it.
    struct Work {
        std::string identifier;
        std::vector<NetworkService::Installed> older;
        std::optional<util::Bytes> authorities;  ///< of the older profile
    };

    [[nodiscard]] std::filesystem::path directoryOf(const std::string& identifier) const { return directory_ / identifier; }
    [[nodiscard]] std::filesystem::path authoritiesFile(const std::string& identifier) const {
        return directoryOf(identifier) / kAuthoritiesFile;
    }
    util::Result<StoreLock> takeTurn();
    [[nodiscard]] std::vector<NetworkService::Installed> connectionsOf(NetworkService& service, const std::string& identifier) const;
    util::Result<std::vector<CompanyConnection>> plan(const ConfigurationProfile& profile) const;
    util::Result<void> resolveIdentity(const ConfigurationProfile::Identity& payload, CompanyConnection& connection) const;
    static util::Result<util::Bytes> authoritiesOf(const ConfigurationProfile& profile);
    util::Result<void> make(NetworkService& service, const std::vector<CompanyConnection>& connections, const util::Bytes& authorities);
    /// Takes back what `make` has made; the error that led to it, and what else went wrong.
    util::Error undo(NetworkService& service, const Work& work, util::Error error);
    util::Result<bool> removeFiles(const std::string& identifier, const std::vector<NetworkService::Installed>& connections);

    static constexpr const char* kAuthoritiesFile = "authorities.pem";

    const CallingUser user_;
    const std::filesystem::path directory_;
    platform::FileStore& files_;
    const IdentityFiles& identities_;
    const Connect connect_;
};

}  // namespace halvane::systools
