#include "server/crypto/Digest.h"

#include "server/crypto/OpenSsl.h"

#include <openssl/crypto.h>

#include <array>

namespace halvane::server {

std::string Digest::hex(std::string_view bytes) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    text.reserve(bytes.size() * 2);
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        text += kDigits[value >> 4];
        text += kDigits[value & 15];
    }
    return text;
}

std::string Digest::sha256(std::string_view text) {
    std::array<unsigned char, 32> digest{};
    unsigned int length = digest.size();
    require(EVP_Digest(text.data(), text.size(), digest.data(), &length, EVP_sha256(), nullptr) == 1, "compute a digest");
    return hex({reinterpret_cast<const char*>(digest.data()), length});
}

bool Digest::equal(std::string_view left, std::string_view right) {
    return left.size() == right.size() && CRYPTO_memcmp(left.data(), right.data(), left.size()) == 0;
}

}  // namespace halvane::server
