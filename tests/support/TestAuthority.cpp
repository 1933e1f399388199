#include "support/TestAuthority.h"

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/pkcs12.h>
#include <openssl/x509v3.h>

#include <atomic>
#include <stdexcept>

namespace halvane::test {

namespace {

template <auto Free>
struct Deleter {
    void operator()(auto* pointer) const { Free(pointer); }
};
using Certificate = std::unique_ptr<X509, Deleter<X509_free>>;
using Key = std::unique_ptr<EVP_PKEY, Deleter<EVP_PKEY_free>>;
using Bio = std::unique_ptr<BIO, Deleter<BIO_free_all>>;

template <typename T>
T must(T value) {
    if (!value) throw std::runtime_error("OpenSSL failed in a fixture");
    return value;
}

std::string contents(const Bio& bio) {
    char* data = nullptr;
    const long size = BIO_get_mem_data(bio.get(), &data);
    return {data, static_cast<std::size_t>(size)};
}

void addExtension(X509& certificate, X509& issuer, int which, const std::string& value) {
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, &issuer, &certificate, nullptr, nullptr, 0);
    std::unique_ptr<X509_EXTENSION, Deleter<X509_EXTENSION_free>> extension(
        must(X509V3_EXT_conf_nid(nullptr, &context, which, value.c_str())));
    must(X509_add_ext(&certificate, extension.get(), -1));
}

struct Plan {
    std::string commonName;
    std::string subjectAltName;
    std::string extendedKeyUsage;
    bool isAuthority = false;
    TestAuthority::Validity validity = TestAuthority::Validity::Now;
};

struct Pair {
    Certificate certificate;
    Key key;
};

/// Signed by `issuer`, or by itself when there is none.
Pair make(const Plan& plan, const Pair* issuer) {
    static std::atomic<long> serial{1};
    constexpr long kDay = 24L * 60 * 60;
    Pair made{Certificate(must(X509_new())), Key(must(EVP_EC_gen("P-256")))};
    X509& certificate = *made.certificate;
    X509& signer = issuer != nullptr ? *issuer->certificate : certificate;
    X509_set_version(&certificate, X509_VERSION_3);
    ASN1_INTEGER_set(X509_get_serialNumber(&certificate), serial++);
    X509_gmtime_adj(X509_getm_notBefore(&certificate), plan.validity == TestAuthority::Validity::NotYet ? kDay : -10 * kDay);
    X509_gmtime_adj(X509_getm_notAfter(&certificate), plan.validity == TestAuthority::Validity::Expired ? -kDay : 10 * kDay);
    X509_set_pubkey(&certificate, made.key.get());
    X509_NAME_add_entry_by_txt(X509_get_subject_name(&certificate), "CN", MBSTRING_UTF8,
                               reinterpret_cast<const unsigned char*>(plan.commonName.c_str()), -1, -1, 0);
    X509_set_issuer_name(&certificate, X509_get_subject_name(&signer));
    addExtension(certificate, signer, NID_basic_constraints, plan.isAuthority ? "critical,CA:TRUE" : "critical,CA:FALSE");
    if (plan.isAuthority) addExtension(certificate, signer, NID_key_usage, "critical,keyCertSign,cRLSign");
    if (!plan.subjectAltName.empty()) addExtension(certificate, signer, NID_subject_alt_name, plan.subjectAltName);
    if (!plan.extendedKeyUsage.empty()) addExtension(certificate, signer, NID_ext_key_usage, plan.extendedKeyUsage);
    must(X509_sign(&certificate, issuer != nullptr ? issuer->key.get() : made.key.get(), EVP_sha256()));
    return made;
}

TestIdentity exported(const Pair& pair) {
    const Bio certificate(BIO_new(BIO_s_mem()));
    const Bio key(BIO_new(BIO_s_mem()));
    const Bio der(BIO_new(BIO_s_mem()));
    must(PEM_write_bio_X509(certificate.get(), pair.certificate.get()));
    must(PEM_write_bio_PrivateKey(key.get(), pair.key.get(), nullptr, nullptr, 0, nullptr, nullptr));
    must(i2d_X509_bio(der.get(), pair.certificate.get()));
    return {contents(certificate), contents(key), contents(der)};
}

}  // namespace

struct TestAuthority::State {
    Pair pair;
    TestIdentity identity;
};

TestAuthority::TestAuthority(const std::string& name) : state_(std::make_unique<State>()) {
    state_->pair = make({.commonName = name, .isAuthority = true}, nullptr);
    state_->identity = exported(state_->pair);
}

TestAuthority::TestAuthority(const std::string& name, const TestAuthority& issuer) : state_(std::make_unique<State>()) {
    state_->pair = make({.commonName = name, .isAuthority = true}, &issuer.state_->pair);
    state_->identity = exported(state_->pair);
}

TestAuthority::~TestAuthority() = default;

const TestIdentity& TestAuthority::root() const { return state_->identity; }

TestIdentity TestAuthority::issueServer(const std::string& subjectAltName, Validity validity) const {
    return exported(make({.commonName = "server", .subjectAltName = subjectAltName, .extendedKeyUsage = "serverAuth", .validity = validity},
                         &state_->pair));
}

TestIdentity TestAuthority::issueClient(const std::string& commonName, Validity validity) const {
    return exported(make({.commonName = commonName, .extendedKeyUsage = "clientAuth", .validity = validity}, &state_->pair));
}

TestIdentity TestAuthority::selfSigned(const std::string& subjectAltName) {
    return exported(make({.commonName = "alone", .subjectAltName = subjectAltName}, nullptr));
}

std::string TestAuthority::pkcs12(const TestIdentity& identity, const std::optional<std::string>& passphrase) {
    const Bio certificateText(BIO_new_mem_buf(identity.certificate.data(), -1));
    const Bio keyText(BIO_new_mem_buf(identity.key.data(), -1));
    const Certificate certificate(must(PEM_read_bio_X509(certificateText.get(), nullptr, nullptr, nullptr)));
    const Key key(identity.key.empty() ? nullptr : must(PEM_read_bio_PrivateKey(keyText.get(), nullptr, nullptr, nullptr)));
    const std::unique_ptr<PKCS12, Deleter<PKCS12_free>> file(
        must(PKCS12_create(passphrase ? passphrase->c_str() : nullptr, "test", key.get(), certificate.get(), nullptr, 0, 0, 0, 0, 0)));
    const Bio bytes(BIO_new(BIO_s_mem()));
    must(i2d_PKCS12_bio(bytes.get(), file.get()));
    return contents(bytes);
}

}  // namespace halvane::test
