#pragma once

#include "util/Bytes.h"

#include <cstddef>
#include <string>

namespace halvane::server {

/// Unpredictable values. Any thread; throw CryptoError when the system has no randomness.
struct Random {
    static util::Bytes bytes(std::size_t count);
    /// Lower-case hexadecimal of `byteCount` random bytes.
    static std::string hex(std::size_t byteCount);
    /// Decimal digits, leading zeros included.
    static std::string digits(std::size_t count);
    /// Letters and digits without those that look alike: people read these aloud, and tools take them
    /// as arguments.
    static std::string password(std::size_t length = 20);
};

}  // namespace halvane::server
