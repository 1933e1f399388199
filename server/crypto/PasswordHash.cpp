#include "server/crypto/PasswordHash.h"

#include "server/crypto/Digest.h"
#include "server/crypto/OpenSsl.h"
#include "server/crypto/Random.h"
#include "util/Text.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <optional>

namespace halvane::server {

namespace {

struct Costs {
    std::uint64_t n = 16384;
    std::uint64_t r = 8;
    std::uint64_t p = 1;
};

constexpr std::uint64_t kMemoryLimit = 64ULL << 20;

/// Absent when the library refuses the costs.
std::optional<std::string> derive(std::string_view password, std::string_view salt, Costs costs) {
    std::array<unsigned char, 32> key{};
    const int ok = EVP_PBE_scrypt(password.data(), password.size(), reinterpret_cast<const unsigned char*>(salt.data()), salt.size(),
                                  costs.n, costs.r, costs.p, kMemoryLimit, key.data(), key.size());
    if (ok != 1) return std::nullopt;
    return Digest::hex({reinterpret_cast<const char*>(key.data()), key.size()});
}

bool readNumber(const std::string& text, std::uint64_t& number) {
    const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), number);
    return problem == std::errc() && end == text.data() + text.size();
}

}  // namespace

std::string PasswordHash::of(std::string_view password) {
    const Costs costs;
    const std::string salt = Random::hex(16);
    const auto key = derive(password, salt, costs);
    if (!key) throw CryptoError("hash a password");
    return "scrypt$" + std::to_string(costs.n) + "$" + std::to_string(costs.r) + "$" + std::to_string(costs.p) + "$" + salt + "$" + *key;
}

bool PasswordHash::matches(std::string_view password, const std::string& stored) {
    const auto parts = util::split(stored, '$');
    Costs costs;
    if (parts.size() != 6 || parts[0] != "scrypt" || !readNumber(parts[1], costs.n) || !readNumber(parts[2], costs.r) ||
        !readNumber(parts[3], costs.p)) {
        return false;
    }
    const auto key = derive(password, parts[4], costs);
    return key && Digest::equal(*key, parts[5]);
}

void PasswordHash::spendTime(std::string_view password) {
    static_cast<void>(derive(password, "00000000000000000000000000000000", Costs()));
}

}  // namespace halvane::server
