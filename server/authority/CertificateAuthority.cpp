#include "server/authority/CertificateAuthority.h"

#include "server/authority/CertificateBuilder.h"
#include "server/crypto/Random.h"
#include "server/store/PrivateFile.h"

#include <openssl/pem.h>

namespace halvane::server {

namespace {

constexpr const char* kCommonName = "Halvane Company CA";
constexpr std::chrono::hours kAuthorityLifetime{24 * 365 * 10};
/// Clocks of employees' computers are not exact.
constexpr std::chrono::minutes kBackdated{10};
constexpr int kIterations = 10'000;

util::Bytes pemOf(EVP_PKEY& key, X509& certificate) {
    const BioPtr pem(BIO_new(BIO_s_mem()));
    require(pem && PEM_write_bio_PKCS8PrivateKey(pem.get(), &key, nullptr, nullptr, 0, nullptr, nullptr) == 1 &&
                PEM_write_bio_X509(pem.get(), &certificate) == 1,
            "write a key and its certificate");
    return contentOf(pem.get());
}

/// Key and certificate of a new authority, PEM.
util::Bytes makeAuthority(Time now) {
    const KeyPtr key = makeKey();
    CertificateBuilder builder(kCommonName, *key, now - kBackdated, now + kAuthorityLifetime);
    builder.addExtension(NID_basic_constraints, "critical,CA:TRUE,pathlen:0");
    builder.addExtension(NID_key_usage, "critical,keyCertSign,cRLSign");
    builder.addExtension(NID_subject_key_identifier, "hash");
    const X509Ptr certificate = std::move(builder).sign(*key);
    return pemOf(*key, *certificate);
}

util::Bytes packed(const std::string& name, const std::string& password, EVP_PKEY& key, X509& certificate, X509& authority) {
    const std::unique_ptr<STACK_OF(X509), void (*)(STACK_OF(X509)*)> chain(sk_X509_new_null(),
                                                                           [](STACK_OF(X509) * stack) { sk_X509_free(stack); });
    require(chain && sk_X509_push(chain.get(), &authority) > 0, "pack a certificate");
    // Both parts under AES-256 and a SHA-256 seal: what is older than that, current libraries refuse.
    constexpr int kSealLater = -1;
    const Pkcs12Ptr file(PKCS12_create(password.c_str(), name.c_str(), &key, &certificate, chain.get(), NID_aes_256_cbc, NID_aes_256_cbc,
                                       kIterations, kSealLater, 0));
    require(file && PKCS12_set_mac(file.get(), password.c_str(), -1, nullptr, 0, kIterations, EVP_sha256()) == 1, "pack a certificate");
    const BioPtr bytes(BIO_new(BIO_s_mem()));
    require(bytes && i2d_PKCS12_bio(bytes.get(), file.get()) == 1, "pack a certificate");
    return contentOf(bytes.get());
}

}  // namespace

CertificateAuthority::CertificateAuthority(const std::filesystem::path& file, const Clock& clock) {
    load(PrivateFile::readOrMake(file, [&clock] { return makeAuthority(clock()); }));
}

void CertificateAuthority::load(const util::Bytes& pem) {
    const auto reader = [&pem] { return BioPtr(BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size()))); };
    // An empty pass phrase, or the library would ask for one on the terminal.
    char noPassPhrase[] = "";
    key_.reset(PEM_read_bio_PrivateKey(reader().get(), nullptr, nullptr, noPassPhrase));
    certificate_.reset(PEM_read_bio_X509(reader().get(), nullptr, nullptr, nullptr));
    require(key_ && certificate_, "read the certificate authority's file");
    require(X509_check_private_key(certificate_.get(), key_.get()) == 1, "use the certificate authority's file");
}

CertificateAuthority::Identity CertificateAuthority::issue(const Subject& subject, Time now) const {
    const Time notAfter = now + kCertificateLifetime;
    const KeyPtr key = makeKey();
    CertificateBuilder builder(subject.shortName, *key, now - kBackdated, notAfter);
    describe(builder, "clientAuth");
    builder.addEmail(subject.email);
    const X509Ptr certificate = std::move(builder).sign(*key_);

    Identity identity{.password = Random::password(), .serial = serialOf(*certificate), .notAfter = notAfter};
    identity.pkcs12 = packed(subject.shortName, identity.password, *key, *certificate, *certificate_);
    return identity;
}

std::string CertificateAuthority::issueAuthenticator(const std::string& hostName, Time now) const {
    const KeyPtr key = makeKey();
    CertificateBuilder builder(hostName, *key, now - kBackdated, now + kCertificateLifetime);
    describe(builder, "serverAuth");
    builder.addHostName(hostName);
    return pemOf(*key, *std::move(builder).sign(*key_));
}

void CertificateAuthority::describe(CertificateBuilder& builder, const char* usage) const {
    builder.setIssuer(*certificate_);
    builder.addExtension(NID_basic_constraints, "critical,CA:FALSE");
    builder.addExtension(NID_key_usage, "critical,digitalSignature");
    builder.addExtension(NID_ext_key_usage, usage);
    builder.addExtension(NID_subject_key_identifier, "hash");
    builder.addExtension(NID_authority_key_identifier, "keyid:always");
}

util::Bytes CertificateAuthority::certificateDer() const {
    const BioPtr der(BIO_new(BIO_s_mem()));
    require(der && i2d_X509_bio(der.get(), certificate_.get()) == 1, "write the authority's certificate");
    return contentOf(der.get());
}

std::string CertificateAuthority::certificatePem() const {
    const BioPtr pem(BIO_new(BIO_s_mem()));
    require(pem && PEM_write_bio_X509(pem.get(), certificate_.get()) == 1, "write the authority's certificate");
    return contentOf(pem.get());
}

}  // namespace halvane::server
