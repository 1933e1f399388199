#pragma once

#include <string>
#include <string_view>

namespace halvane::server {

/// Any thread.
struct Digest {
    /// Lower-case hexadecimal. What only has to be recognised again (session tokens, codes, secret
    /// addresses) is kept like this, so that a copy of the database opens nothing.
    static std::string sha256(std::string_view text);
    static std::string hex(std::string_view bytes);
    /// Takes the same time wherever the difference is; only the lengths may show.
    static bool equal(std::string_view left, std::string_view right);
};

}  // namespace halvane::server
