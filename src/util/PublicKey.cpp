#include "util/PublicKey.h"

#include "util/Base64.h"

#include <openssl/evp.h>

#include <algorithm>
#include <memory>

namespace halvane::util {

namespace {

constexpr std::size_t kSignatureSize = 64;
using Key = std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)>;
using Context = std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)>;

const unsigned char* bytesOf(std::string_view text) { return reinterpret_cast<const unsigned char*>(text.data()); }

}  // namespace

std::optional<PublicKey> PublicKey::fromBase64(std::string_view text) {
    const auto bytes = Base64::decode(text);
    if (!bytes || bytes->size() != kSize) return std::nullopt;
    PublicKey key;
    std::ranges::copy(*bytes, key.bytes_.begin());
    return key;
}

bool PublicKey::verifies(std::string_view bytes, std::string_view signature) const {
    const auto decoded = Base64::decode(signature);
    if (!decoded || decoded->size() != kSignatureSize) return false;
    const Key key(EVP_PKEY_new_raw_public_key(EVP_PKEY_ED25519, nullptr, bytes_.data(), bytes_.size()), &EVP_PKEY_free);
    const Context context(EVP_MD_CTX_new(), &EVP_MD_CTX_free);
    return key && context && EVP_DigestVerifyInit(context.get(), nullptr, nullptr, nullptr, key.get()) == 1 &&
           EVP_DigestVerify(context.get(), bytesOf(*decoded), decoded->size(), bytesOf(bytes), bytes.size()) == 1;
}

}  // namespace halvane::util
