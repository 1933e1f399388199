#pragma once

#include "util/Bytes.h"
#include "util/Result.h"

#include <cstdint>
#include <string>

namespace halvane::systools {

/// What we need to know of an X.509 certificate. A value; any thread.
struct Certificate {
    util::Bytes der;
    util::Bytes publicKey;    ///< SubjectPublicKeyInfo: equal for certificates of one key
    std::string commonName;   ///< UTF-8, the most specific one of the subject; empty when there is none
    std::string fingerprint;  ///< SHA-1 of `der`, 40 upper-case digits
    std::int64_t ends = 0;    ///< last second of its validity, since 1970
    bool isAuthority = false;

    /// Error: not one whole certificate.
    static util::Result<Certificate> parse(const util::Bytes& der);
    /// Of one certificate, DER or PEM.
    static util::Result<Certificate> parseFile(const util::Bytes& bytes);
    [[nodiscard]] util::Bytes pem() const;
};

/// Whether the name may stand in a listing that programs read: not empty, without control characters.
bool isPrintable(const std::string& commonName);

}  // namespace halvane::systools
