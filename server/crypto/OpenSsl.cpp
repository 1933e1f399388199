#include "server/crypto/OpenSsl.h"

#include <openssl/bio.h>
#include <openssl/err.h>

#include <array>

namespace halvane::server {

namespace {

std::string reason() {
    const unsigned long code = ERR_get_error();
    ERR_clear_error();
    if (code == 0) return "no reason given";
    std::array<char, 256> text{};
    ERR_error_string_n(code, text.data(), text.size());
    return text.data();
}

}  // namespace

CryptoError::CryptoError(const std::string& subject) : std::runtime_error(subject + ": " + reason()) {}

void require(bool ok, const char* subject) {
    if (!ok) throw CryptoError(subject);
}

std::string contentOf(BIO* memory) {
    char* bytes = nullptr;
    const long length = BIO_get_mem_data(memory, &bytes);
    return length > 0 ? std::string(bytes, static_cast<std::size_t>(length)) : std::string();
}

}  // namespace halvane::server
