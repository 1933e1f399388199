#include "systools/security/Pkcs12File.h"

#include "systools/security/OpenSsl.h"

#include <openssl/asn1t.h>

#include <optional>

namespace halvane::systools {

namespace {

using util::dataError;

/// Deriving a key from a password takes as long as the file says it should. Issuers ask for some
/// thousands of rounds; a file that asks for billions would only keep us busy.
constexpr long kMostRounds = 5'000'000;

/// The cipher behind a PKCS#5 scheme, by number.
int cipherOf(const X509_ALGOR* scheme) {
    const ASN1_OBJECT* name = nullptr;
    int type = 0;
    const void* parameter = nullptr;
    X509_ALGOR_get0(&name, &type, &parameter, scheme);
    const int number = OBJ_obj2nid(name);
    if (number != NID_pbes2 || type != V_ASN1_SEQUENCE) return number;
    // The second version of the scheme names its cipher inside.
    const auto* sequence = static_cast<const ASN1_STRING*>(parameter);
    const unsigned char* der = ASN1_STRING_get0_data(sequence);
    const std::unique_ptr<PBE2PARAM, openssl::Release<PBE2PARAM_free>> inner(d2i_PBE2PARAM(nullptr, &der, ASN1_STRING_length(sequence)));
    return inner ? OBJ_obj2nid(inner->encryption->algorithm) : NID_undef;
}

bool isOld(int cipher) {
    switch (cipher) {
        case NID_pbe_WithSHA1And128BitRC4:
        case NID_pbe_WithSHA1And40BitRC4:
        case NID_pbe_WithSHA1And3_Key_TripleDES_CBC:
        case NID_pbe_WithSHA1And2_Key_TripleDES_CBC:
        case NID_pbe_WithSHA1And128BitRC2_CBC:
        case NID_pbe_WithSHA1And40BitRC2_CBC:
        case NID_pbeWithMD2AndDES_CBC:
        case NID_pbeWithMD5AndDES_CBC:
        case NID_pbeWithMD2AndRC2_CBC:
        case NID_pbeWithMD5AndRC2_CBC:
        case NID_pbeWithSHA1AndDES_CBC:
        case NID_pbeWithSHA1AndRC2_CBC:
        case NID_rc2_cbc:
        case NID_rc4:
        case NID_des_cbc:
        case NID_des_ede3_cbc:
            return true;
        default:
            return false;
    }
}

/// The first old cipher that the file says it is encrypted by. Needs no password: the schemes stand outside.
std::optional<std::string> oldCipher(const PKCS12* file) {
    const openssl::Pkcs7Stack safes(PKCS12_unpack_authsafes(file));
    for (int i = 0; i < sk_PKCS7_num(safes.get()); ++i) {
        PKCS7* safe = sk_PKCS7_value(safes.get(), i);
        if (PKCS7_type_is_encrypted(safe)) {
            if (const int cipher = cipherOf(safe->d.encrypted->enc_data->algorithm); isOld(cipher)) return OBJ_nid2ln(cipher);
            continue;
        }
        if (!PKCS7_type_is_data(safe)) continue;
        const openssl::SafeBagStack bags(PKCS12_unpack_p7data(safe));
        for (int k = 0; k < sk_PKCS12_SAFEBAG_num(bags.get()); ++k) {
            const PKCS12_SAFEBAG* bag = sk_PKCS12_SAFEBAG_value(bags.get(), k);
            if (PKCS12_SAFEBAG_get_nid(bag) != NID_pkcs8ShroudedKeyBag) continue;
            const X509_ALGOR* scheme = nullptr;
            X509_SIG_get0(PKCS12_SAFEBAG_get0_pkcs8(bag), &scheme, nullptr);
            if (const int cipher = cipherOf(scheme); isOld(cipher)) return OBJ_nid2ln(cipher);
        }
    }
    return std::nullopt;
}

/// Absent when the file is whole and the password is its own.
std::optional<util::Error> integrityError(PKCS12* file, const std::string& password) {
    if (PKCS12_mac_present(file) == 0) return dataError("has no integrity check (MAC), so that network programs would refuse it");
    const ASN1_INTEGER* rounds = nullptr;
    PKCS12_get0_mac(nullptr, nullptr, nullptr, &rounds, file);
    if (rounds != nullptr && (ASN1_INTEGER_get(rounds) < 1 || ASN1_INTEGER_get(rounds) > kMostRounds)) return dataError("is damaged");
    ERR_clear_error();
    if (PKCS12_verify_mac(file, password.c_str(), -1) == 1) return std::nullopt;
    // Without a password there are two ways to write one down.
    if (password.empty() && PKCS12_verify_mac(file, nullptr, 0) == 1) return std::nullopt;
    if (openssl::takeErrors() != 0)
        return dataError("is damaged, or its integrity check (MAC) uses an algorithm that OpenSSL does not know");
    return dataError("wrong password (or the file is damaged)");
}

util::Result<Identity> identityOf(EVP_PKEY* key, X509* certificate, const STACK_OF(X509) * others) {
    if (key == nullptr) return dataError("has no private key");
    if (certificate == nullptr && sk_X509_num(others) <= 0) return dataError("has no certificate");
    if (certificate == nullptr) return dataError("its private key belongs to none of its certificates");
    if (!EVP_PKEY_is_a(key, "RSA") && !EVP_PKEY_is_a(key, "EC"))
        return dataError("its private key is neither RSA nor EC: the certificate store cannot hold it");

    auto own = Certificate::parse(openssl::encoded(certificate, i2d_X509));
    if (!own) return own.error();
    if (!isPrintable(own->commonName)) return dataError("its certificate has no usable common name");
    Identity identity;
    identity.certificate = std::move(*own);
    const openssl::Pkcs8Pointer info(EVP_PKEY2PKCS8(key));
    identity.privateKey = openssl::encoded(info.get(), i2d_PKCS8_PRIV_KEY_INFO);
    if (identity.privateKey.empty()) return dataError("its private key cannot be encoded");
    for (int i = 0; i < sk_X509_num(others); ++i) {
        if (auto other = Certificate::parse(openssl::encoded(sk_X509_value(others, i), i2d_X509))) {
            identity.authorities.push_back(std::move(*other));
        }
    }
    return identity;
}

}  // namespace

Identity::~Identity() { OPENSSL_cleanse(privateKey.data(), privateKey.size()); }

util::Result<Identity> Pkcs12File::open(const util::Bytes& bytes, const std::string& password) {
    if (bytes.size() > kLargest) return dataError("is larger than 1 MiB: not a certificate");
    const auto* start = reinterpret_cast<const unsigned char*>(bytes.data());
    const auto* end = start;
    const openssl::Pkcs12Pointer file(d2i_PKCS12(nullptr, &end, static_cast<long>(bytes.size())));
    if (!file || end != start + bytes.size()) {
        openssl::takeErrors();
        return dataError("is damaged, or not a PKCS#12 file");
    }
    if (const auto cipher = oldCipher(file.get())) {
        return dataError("is encrypted by an old cipher (" + *cipher +
                         "); RC2/3DES are not taken, OpenSSL 3 needs its legacy provider for such files: have it issued with AES");
    }
    if (const auto error = integrityError(file.get(), password)) return *error;

    EVP_PKEY* key = nullptr;
    X509* certificate = nullptr;
    STACK_OF(X509)* others = nullptr;
    const bool parsed = PKCS12_parse(file.get(), password.c_str(), &key, &certificate, &others) == 1;
    const openssl::KeyPointer ownKey(key);
    const openssl::X509Pointer ownCertificate(certificate);
    const openssl::X509Stack ownOthers(others);
    openssl::takeErrors();
    if (!parsed) return dataError("its contents are damaged, or encrypted in a way that OpenSSL cannot read");
    return identityOf(key, certificate, others);
}

}  // namespace halvane::systools
