#include "support/TestSigner.h"

#include "util/Base64.h"

#include <openssl/evp.h>

#include <stdexcept>

namespace halvane::test {

struct TestSigner::Key {
    EVP_PKEY* pkey = EVP_PKEY_Q_keygen(nullptr, nullptr, "ED25519");
    ~Key() { EVP_PKEY_free(pkey); }
};

TestSigner::TestSigner() : key_(std::make_unique<Key>()) {}
TestSigner::~TestSigner() = default;

std::string TestSigner::publicKey() const {
    std::string bytes(32, '\0');
    std::size_t size = bytes.size();
    if (EVP_PKEY_get_raw_public_key(key_->pkey, reinterpret_cast<unsigned char*>(bytes.data()), &size) != 1)
        throw std::runtime_error("no key");
    return util::Base64::encode(bytes);
}

std::string TestSigner::sign(std::string_view bytes) const {
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(), &EVP_MD_CTX_free);
    std::string signature(64, '\0');
    std::size_t size = signature.size();
    if (EVP_DigestSignInit(context.get(), nullptr, nullptr, nullptr, key_->pkey) != 1 ||
        EVP_DigestSign(context.get(), reinterpret_cast<unsigned char*>(signature.data()), &size,
                       reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()) != 1)
        throw std::runtime_error("not signed");
    return util::Base64::encode(signature);
}

}  // namespace halvane::test
