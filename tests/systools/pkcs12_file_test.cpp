#include "systools/Pkcs12Forge.h"
#include "systools/security/Pkcs12File.h"

#include <gtest/gtest.h>

namespace halvane::systools {
namespace {

using test::Pkcs12Forge;
using Cipher = Pkcs12Forge::Cipher;
using Key = Pkcs12Forge::Key;

TEST(Pkcs12File, good_file_gives_certificate_key_and_authority) {
    Pkcs12Forge forge;
    for (const Key key : {Key::Rsa, Key::P256, Key::Secp256k1}) {
        const auto identity = Pkcs12File::open(forge.make({.commonName = "chen.xiao", .key = key}), "pw");
        ASSERT_TRUE(identity) << identity.error().description;
        EXPECT_EQ(identity->certificate.commonName, "chen.xiao");
        EXPECT_EQ(identity->certificate.fingerprint.size(), 40U);
        EXPECT_FALSE(identity->privateKey.empty());
        ASSERT_EQ(identity->authorities.size(), 1U);
        EXPECT_EQ(identity->authorities[0].commonName, "Test Authority");
    }
}

TEST(Pkcs12File, passwords_of_every_kind_open_what_they_closed) {
    Pkcs12Forge forge;
    for (const char* password : {"", "p w\"'$", "密码", "tarn.quop", "a\\b"})
        EXPECT_TRUE(Pkcs12File::open(forge.make({.password = password}), password)) << password;
}

TEST(Pkcs12File, each_kind_of_bad_file_is_told_by_its_own_words) {
    Pkcs12Forge forge;
    const util::Bytes good = forge.make({});
    const std::tuple<const char*, util::Bytes, const char*, const char*> rows[] = {
        {"wrong password", good, "other", "wrong password"},
        {"no password", good, "", "wrong password"},
        {"another case", good, "PW", "wrong password"},
        {"empty", "", "pw", "damaged"},
        {"text", "<html>404</html>", "pw", "not a PKCS#12 file"},
        {"cut off", good.substr(0, good.size() - 1), "pw", "damaged"},
        {"half of it", good.substr(0, good.size() / 2), "pw", "damaged"},
        {"something behind it", good + "x", "pw", "damaged"},
        {"too large", util::Bytes(Pkcs12File::kLargest + 1, '0'), "pw", "larger than 1 MiB"},
        {"RC2", forge.make({.cipher = Cipher::Rc2}), "pw", "old cipher (pbeWithSHA1And40BitRC2-CBC)"},
        {"triple DES", forge.make({.cipher = Cipher::TripleDes}), "pw", "old cipher (pbeWithSHA1And3-KeyTripleDES-CBC)"},
        {"triple DES in the newer scheme", forge.make({.cipher = Cipher::Pbes2TripleDes}), "pw", "old cipher (des-ede3-cbc)"},
        {"old cipher is said before the password is tried", forge.make({.cipher = Cipher::Rc2}), "other", "legacy provider"},
        {"no key", forge.make({.withKey = false}), "pw", "no private key"},
        {"no certificate", forge.make({.withCertificate = false, .withAuthority = false}), "pw", "no certificate"},
        {"only the authority's certificate", forge.make({.withCertificate = false}), "pw", "none of its certificates"},
        {"another's key", forge.make({.withForeignKey = true}), "pw", "none of its certificates"},
        {"no integrity check", forge.make({.withMac = false}), "pw", "no integrity check"},
        {"rounds without end", forge.make({.macRounds = 2'000'000'000}), "pw", "damaged"},
        {"rounds below none", forge.make({.macRounds = -5}), "pw", "damaged"},
        {"a kind of key that no browser's store holds", forge.make({.key = Key::Ed25519}), "pw", "neither RSA nor EC"},
        {"nameless", forge.make({.commonName = ""}), "pw", "no usable common name"},
        {"a name with a line feed, which would forge lines of the listing", forge.make({.commonName = "a\n  2) x \"b"}), "pw",
         "no usable common name"},
    };
    for (const auto& [name, bytes, password, words] : rows) {
        const auto identity = Pkcs12File::open(bytes, password);
        ASSERT_FALSE(identity) << name;
        EXPECT_NE(identity.error().description.find(words), std::string::npos) << name << ": " << identity.error().description;
    }
}

TEST(Pkcs12File, any_byte_turned_or_cut_is_an_error_and_nothing_worse) {
    Pkcs12Forge forge;
    const util::Bytes good = forge.make({});
    for (std::size_t at = 0; at < good.size(); at += 3) {
        EXPECT_FALSE(Pkcs12File::open(good.substr(0, at), "pw")) << "cut at " << at;
        util::Bytes turned = good;
        turned[at] = static_cast<char>(turned[at] ^ (at % 2 == 0 ? 0xFF : 0x01));
        // A few bytes, such as a name for people outside the check, may turn without harm: then it is still the same person's.
        const auto identity = Pkcs12File::open(turned, "pw");
        EXPECT_TRUE(!identity || identity->certificate.commonName == "chen.xiao") << "turned at " << at;
    }
}

}  // namespace
}  // namespace halvane::systools
