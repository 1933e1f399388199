#include "server/authority/CertificateBuilder.h"

#include "server/crypto/Random.h"
#include "util/Text.h"

#include <openssl/bn.h>
#include <openssl/ec.h>

namespace halvane::server {

namespace {

constexpr long kVersion3 = 2;

struct NumberFree {
    void operator()(BIGNUM* number) const { BN_free(number); }
};
using NumberPtr = std::unique_ptr<BIGNUM, NumberFree>;

void setTime(ASN1_TIME* field, Time time) {
    require(ASN1_TIME_set(field, time.time_since_epoch().count()) != nullptr, "set a certificate's time");
}

/// Unpredictable, so that nobody can prepare a collision; positive and not zero, as the standard asks.
void setSerial(X509& certificate) {
    auto bytes = Random::bytes(16);
    bytes.front() = static_cast<char>((bytes.front() & 0x7f) | 0x40);
    const NumberPtr number(BN_bin2bn(reinterpret_cast<const unsigned char*>(bytes.data()), static_cast<int>(bytes.size()), nullptr));
    require(number != nullptr && BN_to_ASN1_INTEGER(number.get(), X509_get_serialNumber(&certificate)) != nullptr, "set a serial number");
}

}  // namespace

KeyPtr makeKey() {
    KeyPtr key(EVP_EC_gen("P-256"));
    require(key != nullptr, "make a key");
    return key;
}

std::string serialOf(X509& certificate) {
    const NumberPtr number(ASN1_INTEGER_to_BN(X509_get0_serialNumber(&certificate), nullptr));
    require(number != nullptr, "read a serial number");
    const std::unique_ptr<char, void (*)(char*)> text(BN_bn2hex(number.get()), [](char* allocated) { OPENSSL_free(allocated); });
    require(text != nullptr, "read a serial number");
    return util::lowercasedAscii(text.get());
}

CertificateBuilder::CertificateBuilder(const std::string& commonName, EVP_PKEY& subjectKey, Time notBefore, Time notAfter)
    : certificate_(X509_new()), issuer_(certificate_.get()) {
    require(certificate_ != nullptr && X509_set_version(certificate_.get(), kVersion3) == 1, "make a certificate");
    setSerial(*certificate_);
    setTime(X509_getm_notBefore(certificate_.get()), notBefore);
    setTime(X509_getm_notAfter(certificate_.get()), notAfter);
    require(X509_NAME_add_entry_by_NID(X509_get_subject_name(certificate_.get()), NID_commonName, MBSTRING_UTF8,
                                       reinterpret_cast<const unsigned char*>(commonName.data()), static_cast<int>(commonName.size()), -1,
                                       0) == 1,
            "set a certificate's name");
    require(X509_set_pubkey(certificate_.get(), &subjectKey) == 1, "set a certificate's key");
    require(X509_set_issuer_name(certificate_.get(), X509_get_subject_name(certificate_.get())) == 1, "set a certificate's issuer");
}

void CertificateBuilder::setIssuer(X509& issuer) {
    issuer_ = &issuer;
    require(X509_set_issuer_name(certificate_.get(), X509_get_subject_name(&issuer)) == 1, "set a certificate's issuer");
}

void CertificateBuilder::addExtension(int nid, const char* value) {
    X509V3_CTX context;
    X509V3_set_ctx(&context, issuer_, certificate_.get(), nullptr, nullptr, 0);
    const std::unique_ptr<X509_EXTENSION, OpenSslDeleter<X509_EXTENSION_free>> extension(
        X509V3_EXT_conf_nid(nullptr, &context, nid, value));
    require(extension != nullptr && X509_add_ext(certificate_.get(), extension.get(), -1) == 1, "add a certificate's extension");
}

void CertificateBuilder::addEmail(const std::string& address) { addName(GEN_EMAIL, address); }

void CertificateBuilder::addHostName(const std::string& name) { addName(GEN_DNS, name); }

void CertificateBuilder::addName(int kind, const std::string& content) {
    // Built by hand: in the configuration syntax a comma in the text would begin another name.
    const std::unique_ptr<GENERAL_NAMES, OpenSslDeleter<GENERAL_NAMES_free>> names(GENERAL_NAMES_new());
    std::unique_ptr<GENERAL_NAME, OpenSslDeleter<GENERAL_NAME_free>> name(GENERAL_NAME_new());
    std::unique_ptr<ASN1_IA5STRING, OpenSslDeleter<ASN1_IA5STRING_free>> text(ASN1_IA5STRING_new());
    require(names && name && text && ASN1_STRING_set(text.get(), content.data(), static_cast<int>(content.size())) == 1,
            "set an alternative name");
    GENERAL_NAME_set0_value(name.get(), kind, text.release());
    require(sk_GENERAL_NAME_push(names.get(), name.get()) > 0, "set an alternative name");
    static_cast<void>(name.release());
    require(X509_add1_ext_i2d(certificate_.get(), NID_subject_alt_name, names.get(), 0, 0) == 1, "set an alternative name");
}

X509Ptr CertificateBuilder::sign(EVP_PKEY& issuerKey) && {
    require(X509_sign(certificate_.get(), &issuerKey, EVP_sha256()) > 0, "sign a certificate");
    return std::move(certificate_);
}

}  // namespace halvane::server
