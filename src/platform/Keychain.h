#pragma once

#include "util/Bytes.h"
#include "util/Result.h"

#include <chrono>
#include <optional>
#include <string>

namespace halvane::platform {

/// What identifies one generic-password item.
struct KeychainQuery {
    std::string itemClass;  ///< always "generic password"
    std::string service;
    std::string account;
    std::string accessibility;  ///< always "after first unlock": readable once the user's session opened the store
};

/// The user's secret store. Every call blocks its thread, at most for `kDeadline`; a store that is
/// absent, locked or silent is an error, never a wait. Any thread, one call at a time.
class Keychain {
public:
    static constexpr std::chrono::milliseconds kDeadline{1500};

    virtual ~Keychain() = default;
    virtual util::Result<void> add(const KeychainQuery& query, const util::Bytes& data) = 0;
    /// Deletes all matches; none is a success.
    virtual util::Result<void> remove(const KeychainQuery& query) = 0;
    /// One match at most; absent when there is none.
    virtual util::Result<std::optional<util::Bytes>> copyMatching(const KeychainQuery& query) = 0;
};

}  // namespace halvane::platform
