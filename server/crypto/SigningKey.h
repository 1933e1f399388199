#pragma once

#include "server/crypto/OpenSsl.h"
#include "util/Bytes.h"

#include <string_view>

namespace halvane::server {

/// The Ed25519 key that vouches for updates: clients are built with its public half and install nothing
/// that it has not signed. Constant after construction; any thread.
class SigningKey {
public:
    /// A new key, PKCS#8 in PEM. Throws CryptoError.
    static util::Bytes makePem();

    /// Throws CryptoError for what is no such key.
    explicit SigningKey(const util::Bytes& pem);

    /// The 32 raw bytes.
    [[nodiscard]] util::Bytes publicKey() const;
    /// 64 bytes, the same for the same input. Throws CryptoError.
    [[nodiscard]] util::Bytes sign(std::string_view bytes) const;

private:
    KeyPtr key_;
};

}  // namespace halvane::server
