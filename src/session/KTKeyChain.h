#pragma once

#include "platform/Keychain.h"
#include "util/Value.h"

#include <optional>
#include <string>

namespace halvane::util {
class Log;
}

namespace halvane::session {

/// Small records in the user's secret store, one generic-password item for each service identifier.
/// A store that refuses, or is not there, is silence: saves are lost and loads find nothing. Calls block
/// for as long as the store's port says; one at a time, from any one thread.
class KTKeyChain {
public:
    KTKeyChain(platform::Keychain& keychain, util::Log& log);

    /// What identifies the item of `service`.
    [[nodiscard]] static platform::KeychainQuery getKeyChainInfo(const std::string& service);

    /// Replaces: the old item is deleted first, so that a failed save leaves none.
    void saveInfo(const std::string& service, const util::Value& data);

    /// Absent when there is no item, or when its bytes are no archive (which is logged).
    [[nodiscard]] std::optional<util::Value> loadInfo(const std::string& service);

    void delInfo(const std::string& service);

private:
    platform::Keychain& keychain_;
    util::Log& log_;
};

}  // namespace halvane::session
