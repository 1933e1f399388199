#pragma once

#include "server/Clock.h"

#include <deque>
#include <map>
#include <mutex>
#include <string>

namespace halvane::server {

/// Counts failed sign-ins of each account, so that passwords cannot be guessed by the thousand. Kept
/// in memory: a restart forgives. Any thread.
class LoginThrottle {
public:
    static constexpr std::size_t kFailures = 20;
    static constexpr std::chrono::minutes kWindow{5};

    explicit LoginThrottle(Clock clock) : clock_(std::move(clock)) {}

    /// Whether the account had kFailures within kWindow. `account` is any text that was typed.
    bool isClosed(const std::string& account);
    void failed(const std::string& account);
    void succeeded(const std::string& account);

private:
    void forgetOld(std::deque<Time>& failures) const;

    const Clock clock_;
    std::mutex mutex_;
    std::map<std::string, std::deque<Time>> failures_;  ///< guarded by mutex_
};

}  // namespace halvane::server
