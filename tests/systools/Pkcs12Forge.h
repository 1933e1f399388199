#pragma once

#include "util/Bytes.h"

#include <map>
#include <memory>
#include <string>

namespace halvane::test {

/// Makes PKCS#12 files, good ones and those that an import must refuse.
class Pkcs12Forge {
public:
    enum class Key { Rsa, P256, Secp256k1, Ed25519 };
    enum class Cipher { Aes, Rc2, TripleDes, Pbes2TripleDes };
    struct Recipe {
        std::string commonName = "chen.xiao";
        std::string organisation = "Example";
        Key key = Key::P256;
        std::string keyLabel;  ///< files with an equal label and kind share a key; empty for a new one
        long serial = 0;       ///< 0 for a new one
        std::string password = "pw";
        Cipher cipher = Cipher::Aes;
        bool withKey = true;
        bool withCertificate = true;
        bool withAuthority = true;
        bool withMac = true;
        bool withForeignKey = false;  ///< another key than the certificate's
        long macRounds = 0;           ///< what the file claims; 0 for the truth
    };

    Pkcs12Forge();
    ~Pkcs12Forge();

    util::Bytes make(const Recipe& recipe);

private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace halvane::test
