#pragma once

#include "server/Clock.h"
#include "server/crypto/OpenSsl.h"
#include "util/Bytes.h"

#include <filesystem>
#include <string>

namespace halvane::server {

class CertificateBuilder;

/// The company's certificate authority: signs the personal certificates with which employees' computers
/// join the network. Key and certificate stand in one file (0600) of the data directory, made on first
/// use. Constant after construction; any thread.
class CertificateAuthority {
public:
    static constexpr std::chrono::hours kCertificateLifetime{24 * 365};

    struct Subject {
        std::string shortName;  ///< common name and friendly name
        std::string email;      ///< subject alternative name
    };
    struct Identity {
        util::Bytes pkcs12;    ///< certificate, its key and the authority's certificate; AES-256
        std::string password;  ///< of that file; known to nobody else
        std::string serial;    ///< lower-case hexadecimal
        Time notAfter;
    };

    /// Throws CryptoError or std::system_error when the file cannot be made or read.
    explicit CertificateAuthority(const std::filesystem::path& file, const Clock& clock);

    /// A new key and a certificate for it, valid from `now` on. Throws CryptoError.
    [[nodiscard]] Identity issue(const Subject& subject, Time now) const;
    /// For the network's authentication server of that host name: a new key (PKCS#8) and its certificate, both PEM in
    /// one text. Throws CryptoError, also for what is no host name.
    [[nodiscard]] std::string issueAuthenticator(const std::string& hostName, Time now) const;
    /// The authority's certificate, for the network's authentication server.
    [[nodiscard]] std::string certificatePem() const;
    [[nodiscard]] util::Bytes certificateDer() const;

private:
    void load(const util::Bytes& pem);
    /// What all certificates that it signs have in common; `usage` is what they may be used for.
    void describe(CertificateBuilder& builder, const char* usage) const;

    KeyPtr key_;
    X509Ptr certificate_;
};

}  // namespace halvane::server
