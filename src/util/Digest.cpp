#include "util/Digest.h"

#include <openssl/evp.h>

#include <array>

namespace halvane::util {

namespace {

using Output = std::array<unsigned char, EVP_MAX_MD_SIZE>;

const char* nameOf(Digest::Algorithm algorithm) {
    switch (algorithm) {
        case Digest::Algorithm::Md5:
            return "MD5";
        case Digest::Algorithm::Sha1:
            return "SHA1";
        case Digest::Algorithm::Sha256:
            return "SHA256";
        case Digest::Algorithm::Sha512:
            return "SHA512";
    }
    return "";
}

std::string_view upToNul(std::string_view text) { return text.substr(0, text.find('\0')); }

std::string hmac(Digest::Algorithm algorithm, std::string_view text, std::string_view key) {
    Output output;
    std::size_t size = 0;
    // An empty view may point nowhere, which the library would take for a key that is to be set later.
    const char* keyBytes = key.empty() ? "" : key.data();
    const auto* bytes = reinterpret_cast<const unsigned char*>(text.data());
    const bool made = EVP_Q_mac(nullptr, "HMAC", nullptr, nameOf(algorithm), nullptr, keyBytes, key.size(), bytes, text.size(),
                                output.data(), output.size(), &size) != nullptr;
    return made ? Digest::stringFromBytes(output.data(), size) : std::string();
}

}  // namespace

std::string Digest::of(Algorithm algorithm, std::string_view bytes) {
    Output output;
    std::size_t size = 0;
    const bool made = EVP_Q_digest(nullptr, nameOf(algorithm), nullptr, bytes.data(), bytes.size(), output.data(), &size) == 1;
    return made ? stringFromBytes(output.data(), size) : std::string();
}

std::string Digest::md5String(const Value::Data& data) { return of(Algorithm::Md5, data.bytes); }

std::string Digest::md5String(std::string_view text) { return of(Algorithm::Md5, upToNul(text)); }

std::string Digest::sha1String(std::string_view text) { return of(Algorithm::Sha1, upToNul(text)); }

std::string Digest::sha256String(std::string_view text) { return of(Algorithm::Sha256, upToNul(text)); }

std::string Digest::sha512String(std::string_view text) { return of(Algorithm::Sha512, upToNul(text)); }

std::string Digest::hmacSHA1StringWithKey(std::string_view text, std::string_view key) { return hmac(Algorithm::Sha1, text, key); }

std::string Digest::hmacSHA256StringWithKey(std::string_view text, std::string_view key) { return hmac(Algorithm::Sha256, text, key); }

std::string Digest::hmacSHA512StringWithKey(std::string_view text, std::string_view key) { return hmac(Algorithm::Sha512, text, key); }

std::string Digest::stringFromBytes(const unsigned char* bytes, std::size_t length) {
    constexpr const char* kDigits = "0123456789abcdef";
    std::string text;
    text.reserve(2 * length);
    for (std::size_t i = 0; i < length; ++i) text += {kDigits[bytes[i] >> 4], kDigits[bytes[i] & 0xF]};
    return text;
}

}  // namespace halvane::util
