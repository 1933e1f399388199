#pragma once

#include "server/Clock.h"
#include "server/crypto/OpenSsl.h"

#include <string>

namespace halvane::server {

/// Puts an X.509 version 3 certificate together. Throws CryptoError at the step that fails.
class CertificateBuilder {
public:
    /// A random serial number of 127 bits; `commonName` is UTF-8.
    CertificateBuilder(const std::string& commonName, EVP_PKEY& subjectKey, Time notBefore, Time notAfter);

    /// By default the certificate issues itself.
    void setIssuer(X509& issuer);
    /// `value` in the library's configuration syntax, "critical," included; it must not come from outside.
    void addExtension(int nid, const char* value);
    /// Alternative names of the subject; one of the two, once.
    void addEmail(const std::string& address);
    void addHostName(const std::string& name);
    [[nodiscard]] X509Ptr sign(EVP_PKEY& issuerKey) &&;

private:
    void addName(int kind, const std::string& text);

    X509Ptr certificate_;
    X509* issuer_ = nullptr;
};

/// A new key on the curve P-256.
KeyPtr makeKey();
/// Lower-case hexadecimal.
std::string serialOf(X509& certificate);

}  // namespace halvane::server
