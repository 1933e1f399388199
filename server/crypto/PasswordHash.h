#pragma once

#include <string>
#include <string_view>

namespace halvane::server {

/// Passwords as they are stored: "scrypt$N$r$p$salt$key", so that the costs can grow later while old
/// hashes stay readable. About 50 ms and 16 MB each. Any thread; call it outside locks.
struct PasswordHash {
    static std::string of(std::string_view password);
    /// False also for a stored text that is no such hash.
    static bool matches(std::string_view password, const std::string& stored);
    /// Costs what `matches` costs: an unknown user must not answer faster than a known one.
    static void spendTime(std::string_view password);
};

}  // namespace halvane::server
