#pragma once

#include "platform/Keychain.h"
#include "util/Log.h"

#include <atomic>

namespace halvane::linux {

/// Generic passwords in the user's Secret Service, in its default collection. An item is found by
/// service and account, whichever program stored it; its bytes are answered as they are. Never asks
/// the person for anything: a locked collection is an error. Each call connects anew, so that a
/// service which comes, goes or hangs spoils no later one. The first failure is logged, once.
/// Any thread, one call at a time; `log` outlives it.
class SecretServiceKeychain final : public platform::Keychain {
public:
    explicit SecretServiceKeychain(util::Log& log, std::chrono::milliseconds deadline = kDeadline) : log_(log), deadline_(deadline) {}

    /// An item that is there already is an error.
    util::Result<void> add(const platform::KeychainQuery& query, const util::Bytes& data) override;
    util::Result<void> remove(const platform::KeychainQuery& query) override;
    util::Result<std::optional<util::Bytes>> copyMatching(const platform::KeychainQuery& query) override;

private:
    template <typename T>
    util::Result<T> reported(util::Result<T> outcome);

    util::Log& log_;
    const std::chrono::milliseconds deadline_;
    std::atomic<bool> reported_ = false;
};

}  // namespace halvane::linux
