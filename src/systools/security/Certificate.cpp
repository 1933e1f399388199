#include "systools/security/Certificate.h"

#include "systools/security/OpenSsl.h"
#include "util/Digest.h"
#include "util/Text.h"

#include <openssl/pem.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <algorithm>
#include <cctype>
#include <ctime>

namespace halvane::systools {

namespace {

std::string commonNameOf(const X509_NAME* subject) {
    int index = -1;
    for (int next = -1; (next = X509_NAME_get_index_by_NID(subject, NID_commonName, next)) >= 0;) index = next;
    if (index < 0) return {};
    unsigned char* text = nullptr;
    const int length = ASN1_STRING_to_UTF8(&text, X509_NAME_ENTRY_get_data(X509_NAME_get_entry(subject, index)));
    if (length < 0) return {};
    std::string name(reinterpret_cast<const char*>(text), static_cast<std::size_t>(length));
    OPENSSL_free(text);
    return util::isValidUtf8(name) ? name : std::string();
}

std::string sha1Digits(const util::Bytes& bytes) {
    std::string digits = util::Digest::of(util::Digest::Algorithm::Sha1, bytes);
    std::ranges::transform(digits, digits.begin(), [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return digits;
}

}  // namespace

util::Result<Certificate> Certificate::parse(const util::Bytes& der) {
    const auto* start = reinterpret_cast<const unsigned char*>(der.data());
    const auto* end = start;
    const openssl::X509Pointer x509(d2i_X509(nullptr, &end, static_cast<long>(der.size())));
    if (!x509 || end != start + der.size()) {
        openssl::takeErrors();
        return util::dataError("not a certificate");
    }
    Certificate certificate;
    certificate.der = der;
    certificate.commonName = commonNameOf(X509_get_subject_name(x509.get()));
    certificate.publicKey = openssl::encoded(X509_get_X509_PUBKEY(x509.get()), i2d_X509_PUBKEY);
    certificate.fingerprint = sha1Digits(der);
    std::tm ends{};
    if (ASN1_TIME_to_tm(X509_get0_notAfter(x509.get()), &ends) == 1) certificate.ends = ::timegm(&ends);
    certificate.isAuthority = X509_check_ca(x509.get()) == 1;
    return certificate;
}

util::Result<Certificate> Certificate::parseFile(const util::Bytes& bytes) {
    const openssl::BioPointer text(BIO_new_mem_buf(bytes.data(), static_cast<int>(bytes.size())));
    const openssl::X509Pointer x509(PEM_read_bio_X509(text.get(), nullptr, nullptr, nullptr));
    openssl::takeErrors();
    return parse(x509 ? openssl::encoded(x509.get(), i2d_X509) : bytes);
}

util::Bytes Certificate::pem() const {
    const auto* start = reinterpret_cast<const unsigned char*>(der.data());
    const openssl::X509Pointer x509(d2i_X509(nullptr, &start, static_cast<long>(der.size())));
    const openssl::BioPointer text(BIO_new(BIO_s_mem()));
    char* written = nullptr;
    if (!x509 || !text || PEM_write_bio_X509(text.get(), x509.get()) != 1) return {};
    const long size = BIO_get_mem_data(text.get(), &written);
    return {written, static_cast<std::size_t>(size)};
}

bool isPrintable(const std::string& commonName) { return !commonName.empty() && !util::hasControls(commonName); }

}  // namespace halvane::systools
