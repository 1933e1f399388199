#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace halvane::server {

/// A login name that a new user may have: "local@domain" of ASCII letters, digits and "._-". The local
/// part becomes a file name and the name of a certificate, so it is kept as narrow as this.
struct UserName {
    std::string full;
    std::string local;

    /// Absent for any other text. Lower case, because names compare without regard to case.
    static std::optional<UserName> parse(std::string_view text);
};

}  // namespace halvane::server
