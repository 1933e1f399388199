#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace halvane::util {

/// The public half of an Ed25519 key (RFC 8032): whose signatures are believed. A value; any thread.
class PublicKey {
public:
    /// Base64 of the 32 bytes; absent when it is something else.
    static std::optional<PublicKey> fromBase64(std::string_view text);

    /// Whether `signature`, base64, was made with the private half over exactly these bytes.
    [[nodiscard]] bool verifies(std::string_view bytes, std::string_view signature) const;

private:
    static constexpr std::size_t kSize = 32;
    std::array<unsigned char, kSize> bytes_{};
};

}  // namespace halvane::util
