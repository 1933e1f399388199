#pragma once

#include "systools/security/Certificate.h"
#include "util/Bytes.h"
#include "util/Result.h"

#include <vector>

namespace halvane::systools {

/// A person's certificate with its private key, and the authorities that came with them. The key is
/// wiped from memory when the object goes.
struct Identity {
    Identity() = default;
    Identity(Identity&&) noexcept = default;
    Identity& operator=(Identity&&) = delete;
    ~Identity();

    Certificate certificate;
    util::Bytes privateKey;  ///< PKCS#8, not encrypted
    std::vector<Certificate> authorities;
};

/// Reads PKCS#12 files.
struct Pkcs12File {
    static constexpr std::size_t kLargest = std::size_t{1} << 20;

    /// Errors say what is wrong with the file, in words for the person who imports it: too large,
    /// damaged, encrypted by an old cipher (also where OpenSSL could still read it: network programs
    /// that go by OpenSSL's defaults could not), wrong password, without key or certificate, a key that
    /// belongs to another certificate, a kind of key that the certificate store cannot hold.
    static util::Result<Identity> open(const util::Bytes& bytes, const std::string& password);
};

}  // namespace halvane::systools
