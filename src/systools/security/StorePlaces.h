#pragma once

#include "util/Result.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace halvane::systools {

/// Where a user's certificates stand. A value.
struct StorePlaces {
    /// The NSS databases that browsers read, the one we keep identities in first:
    /// $XDG_DATA_HOME/pki/nssdb (recent browsers), $HOME/.pki/nssdb (older ones). The first that exists
    /// is ours, and without any we make the first of them. Deleting looks into each that exists.
    std::vector<std::filesystem::path> databases;
    /// The identity files, $XDG_DATA_HOME/halvane/identities.
    std::filesystem::path identities;
    /// What profiles need beside their connections, $XDG_DATA_HOME/halvane/profiles.
    std::filesystem::path profiles;

    using Variable = std::function<std::optional<std::string>(const char* name)>;

    /// `variable`: the environment; `accountHome`: what to go by without HOME. Error: no home at all.
    static util::Result<StorePlaces> find(const Variable& variable, const std::optional<std::filesystem::path>& accountHome);
    static util::Result<StorePlaces> ofThisUser();
};

}  // namespace halvane::systools
