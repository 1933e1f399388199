#pragma once

#include "util/Value.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace halvane::util {

/// Digests in lower-case hexadecimal. The door to the library's digests. Any thread. Empty where the system's policy
/// forbids one (MD5).
struct Digest {
    enum class Algorithm { Md5, Sha1, Sha256, Sha512 };
    /// Of all the bytes.
    static std::string of(Algorithm algorithm, std::string_view bytes);
    static std::string md5String(const Value::Data& data);

    // Of a text's UTF-8 bytes up to its first NUL.
    static std::string md5String(std::string_view text);
    static std::string sha1String(std::string_view text);
    static std::string sha256String(std::string_view text);
    static std::string sha512String(std::string_view text);

    // HMAC (RFC 2104) of all of a text's UTF-8 bytes, with all of the key's.
    static std::string hmacSHA1StringWithKey(std::string_view text, std::string_view key);
    static std::string hmacSHA256StringWithKey(std::string_view text, std::string_view key);
    static std::string hmacSHA512StringWithKey(std::string_view text, std::string_view key);

    /// Two lower-case hexadecimal digits for each byte, in order, nothing between them.
    static std::string stringFromBytes(const unsigned char* bytes, std::size_t length);
};

}  // namespace halvane::util
