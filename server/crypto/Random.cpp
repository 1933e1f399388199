#include "server/crypto/Random.h"

#include "server/crypto/Digest.h"
#include "server/crypto/OpenSsl.h"

#include <openssl/rand.h>

#include <string_view>

namespace halvane::server {

namespace {

/// Each character equally likely: bytes beyond the largest multiple of the alphabet's size are drawn again.
std::string drawn(std::string_view alphabet, std::size_t count) {
    const std::size_t usable = 256 - 256 % alphabet.size();
    std::string text;
    while (text.size() < count) {
        for (const char byte : Random::bytes(count)) {
            const auto value = static_cast<unsigned char>(byte);
            if (value < usable && text.size() < count) text += alphabet[value % alphabet.size()];
        }
    }
    return text;
}

}  // namespace

util::Bytes Random::bytes(std::size_t count) {
    util::Bytes result(count, '\0');
    require(RAND_bytes(reinterpret_cast<unsigned char*>(result.data()), static_cast<int>(count)) == 1, "draw random bytes");
    return result;
}

std::string Random::hex(std::size_t byteCount) { return Digest::hex(bytes(byteCount)); }

std::string Random::digits(std::size_t count) { return drawn("0123456789", count); }

std::string Random::password(std::size_t length) { return drawn("abcdefghijkmnpqrstuvwxyzABCDEFGHJKLMNPQRSTUVWXYZ23456789", length); }

}  // namespace halvane::server
