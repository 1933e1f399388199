#include "systools/Pkcs12Forge.h"

#include "systools/security/OpenSsl.h"

#include <openssl/ec.h>
#include <openssl/provider.h>
#include <openssl/rsa.h>

#include <stdexcept>
#include <vector>

namespace halvane::test {

namespace openssl = systools::openssl;

struct Pkcs12Forge::State {
    State()
        : library(OSSL_LIB_CTX_new()), standard(OSSL_PROVIDER_load(library, "default")), legacy(OSSL_PROVIDER_load(library, "legacy")) {}
    ~State() {
        OSSL_PROVIDER_unload(legacy);
        OSSL_PROVIDER_unload(standard);
        OSSL_LIB_CTX_free(library);
    }

    // A context of its own: with old ciphers loaded for the whole process nothing would be refused.
    OSSL_LIB_CTX* library;
    OSSL_PROVIDER* standard;
    OSSL_PROVIDER* legacy;
    openssl::KeyPointer authorityKey;
    openssl::X509Pointer authority;
    std::map<std::pair<std::string, Key>, openssl::KeyPointer> keys;
    long made = 0;
};

namespace {

openssl::KeyPointer makeKey(Pkcs12Forge::Key kind) {
    switch (kind) {
        case Pkcs12Forge::Key::Rsa:
            return openssl::KeyPointer(EVP_RSA_gen(2048));
        case Pkcs12Forge::Key::P256:
            return openssl::KeyPointer(EVP_EC_gen("P-256"));
        case Pkcs12Forge::Key::Secp256k1:
            return openssl::KeyPointer(EVP_EC_gen("secp256k1"));
        case Pkcs12Forge::Key::Ed25519:
            return openssl::KeyPointer(EVP_PKEY_Q_keygen(nullptr, nullptr, "ED25519"));
    }
    throw std::logic_error("no such kind of key");
}

void addName(X509_NAME* name, const char* field, const std::string& value) {
    if (value.empty()) return;
    X509_NAME_add_entry_by_txt(name, field, MBSTRING_UTF8, reinterpret_cast<const unsigned char*>(value.data()),
                               static_cast<int>(value.size()), -1, 0);
}

openssl::X509Pointer makeCertificate(EVP_PKEY* key, const Pkcs12Forge::Recipe& recipe, long serial, const X509* issuer,
                                     EVP_PKEY* issuerKey) {
    openssl::X509Pointer certificate(X509_new());
    X509* made = certificate.get();
    X509_set_version(made, 2);
    ASN1_INTEGER_set(X509_get_serialNumber(made), serial);
    X509_gmtime_adj(X509_getm_notBefore(made), 0);
    X509_gmtime_adj(X509_getm_notAfter(made), 86400);
    X509_set_pubkey(made, key);
    addName(X509_get_subject_name(made), "O", recipe.organisation);
    addName(X509_get_subject_name(made), "CN", recipe.commonName);
    X509_set_issuer_name(made, X509_get_subject_name(issuer == nullptr ? made : issuer));
    if (X509_sign(made, issuerKey, EVP_sha256()) == 0) throw std::runtime_error("cannot sign");
    return certificate;
}

int cipherNumber(Pkcs12Forge::Cipher cipher) {
    switch (cipher) {
        case Pkcs12Forge::Cipher::Aes:
            return NID_aes_256_cbc;
        case Pkcs12Forge::Cipher::Rc2:
            return NID_pbe_WithSHA1And40BitRC2_CBC;
        case Pkcs12Forge::Cipher::TripleDes:
            return NID_pbe_WithSHA1And3_Key_TripleDES_CBC;
        case Pkcs12Forge::Cipher::Pbes2TripleDes:
            return NID_des_ede3_cbc;
    }
    throw std::logic_error("no such cipher");
}

}  // namespace

Pkcs12Forge::Pkcs12Forge() : state_(std::make_unique<State>()) {
    state_->authorityKey = makeKey(Key::P256);
    state_->authority =
        makeCertificate(state_->authorityKey.get(), {.commonName = "Test Authority"}, 1, nullptr, state_->authorityKey.get());
}

Pkcs12Forge::~Pkcs12Forge() = default;

util::Bytes Pkcs12Forge::make(const Recipe& recipe) {
    const long made = ++state_->made;
    const long serial = recipe.serial != 0 ? recipe.serial : 1000 + made;
    const std::string label = recipe.keyLabel.empty() ? "#" + std::to_string(made) : recipe.keyLabel;
    auto& key = state_->keys[{label, recipe.key}];
    if (!key) key = makeKey(recipe.key);
    const auto certificate = makeCertificate(key.get(), recipe, serial, state_->authority.get(), state_->authorityKey.get());
    const auto foreign = recipe.withForeignKey ? makeKey(recipe.key) : nullptr;

    const openssl::X509Stack authorities(sk_X509_new_null());
    if (recipe.withAuthority) {
        X509_up_ref(state_->authority.get());
        sk_X509_push(authorities.get(), state_->authority.get());
    }
    // The library refuses to put a certificate beside a key that is not its own, but takes it as "another" one.
    if (recipe.withForeignKey) {
        X509_up_ref(certificate.get());
        sk_X509_push(authorities.get(), certificate.get());
    }
    X509* own = recipe.withCertificate && !recipe.withForeignKey ? certificate.get() : nullptr;
    EVP_PKEY* ownKey = !recipe.withKey ? nullptr : foreign ? foreign.get() : key.get();
    const int cipher = cipherNumber(recipe.cipher);
    const openssl::Pkcs12Pointer file(PKCS12_create_ex(recipe.password.c_str(), recipe.commonName.c_str(), ownKey, own, authorities.get(),
                                                       cipher, cipher, 100, recipe.withMac ? 100 : -1, 0, state_->library, nullptr));
    if (!file) throw std::runtime_error("cannot forge the file");
    if (recipe.macRounds != 0) {
        const ASN1_INTEGER* rounds = nullptr;
        PKCS12_get0_mac(nullptr, nullptr, nullptr, &rounds, file.get());
        ASN1_INTEGER_set(const_cast<ASN1_INTEGER*>(rounds), recipe.macRounds);
    }
    return openssl::encoded(file.get(), i2d_PKCS12);
}

}  // namespace halvane::test
