#include "server/crypto/SigningKey.h"

#include <openssl/pem.h>

namespace halvane::server {

namespace {

constexpr std::size_t kPublicKeySize = 32;
constexpr std::size_t kSignatureSize = 64;

}  // namespace

util::Bytes SigningKey::makePem() {
    const KeyPtr key(EVP_PKEY_Q_keygen(nullptr, nullptr, "ED25519"));
    const BioPtr pem(BIO_new(BIO_s_mem()));
    require(key && pem && PEM_write_bio_PKCS8PrivateKey(pem.get(), key.get(), nullptr, nullptr, 0, nullptr, nullptr) == 1,
            "make the update key");
    return contentOf(pem.get());
}

SigningKey::SigningKey(const util::Bytes& pem) {
    const BioPtr reader(BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size())));
    // An empty pass phrase, or the library would ask for one on the terminal.
    char noPassPhrase[] = "";
    key_.reset(PEM_read_bio_PrivateKey(reader.get(), nullptr, nullptr, noPassPhrase));
    require(key_ != nullptr, "read the update key's file");
    require(EVP_PKEY_get_base_id(key_.get()) == EVP_PKEY_ED25519, "use the update key's file, which holds no Ed25519 key");
}

util::Bytes SigningKey::publicKey() const {
    util::Bytes raw(kPublicKeySize, '\0');
    std::size_t length = raw.size();
    require(EVP_PKEY_get_raw_public_key(key_.get(), reinterpret_cast<unsigned char*>(raw.data()), &length) == 1 && length == raw.size(),
            "read the update key's public half");
    return raw;
}

util::Bytes SigningKey::sign(std::string_view bytes) const {
    const std::unique_ptr<EVP_MD_CTX, OpenSslDeleter<EVP_MD_CTX_free>> context(EVP_MD_CTX_new());
    util::Bytes signature(kSignatureSize, '\0');
    std::size_t length = signature.size();
    require(context && EVP_DigestSignInit(context.get(), nullptr, nullptr, nullptr, key_.get()) == 1 &&
                EVP_DigestSign(context.get(), reinterpret_cast<unsigned char*>(signature.data()), &length,
                               reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()) == 1 &&
                length == signature.size(),
            "sign with the update key");
    return signature;
}

}  // namespace halvane::server
