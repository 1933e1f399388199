#include "util/PublicKey.h"

#include "support/TestSigner.h"
#include "util/Base64.h"

#include <gtest/gtest.h>

namespace halvane::util {
namespace {

std::string ofHex(std::string_view digits) {
    std::string bytes;
    for (std::size_t i = 0; i < digits.size(); i += 2) bytes += static_cast<char>(std::stoi(std::string(digits.substr(i, 2)), nullptr, 16));
    return bytes;
}

TEST(PublicKey, verifies_the_vectors_of_rfc_8032) {
    struct Row {
        const char* key;
        const char* message;
        const char* signature;
    };
    const Row rows[] = {
        {"d75a980182b10ab7d54bfed3c964073a0ee172f3daa62325af021a68f707511a", "",
         "e5564300c360ac729086e2cc806e828a84877f1eb8e5d974d873e065224901555fb8821590a33bacc61e39701cf9b46bd25bf5f0595bbe24655141438e7a100"
         "b"},
        {"3d4017c3e843895a92b70aa74d1b7ebc9c982ccf2ec4968cc0cd55f12af4660c", "72",
         "92a009a9f0d4cab8720e820b5f642540a2b27b5416503f8fb3762223ebdb69da085ac1e43e15996e458f3613d0f11d8c387b2eaeb4302aeeb00d291612bb0c0"
         "0"},
        {"fc51cd8e6218a1a38da47ed00230f0580816ed13ba3303ac5deb911548908025", "af82",
         "6291d657deec24024827e69c3abe01a30ce548a284743a445e3680d7db5ac3ac18ff9b538d16f290ae67f760984dc6594a7c15e9716ed28dc027beceea1ec40"
         "a"},
    };
    for (const auto& row : rows) {
        const auto key = PublicKey::fromBase64(Base64::encode(ofHex(row.key)));
        ASSERT_TRUE(key);
        EXPECT_TRUE(key->verifies(ofHex(row.message), Base64::encode(ofHex(row.signature))));
        EXPECT_FALSE(key->verifies(ofHex(row.message) + "x", Base64::encode(ofHex(row.signature))));
    }
}

TEST(PublicKey, believes_only_whole_signatures_of_its_own_half) {
    const test::TestSigner ours;
    const test::TestSigner other;
    const auto key = PublicKey::fromBase64(ours.publicKey());
    ASSERT_TRUE(key);
    const std::string good = ours.sign("package");
    EXPECT_TRUE(key->verifies("package", good));
    std::string changed = good;
    changed[10] = changed[10] == 'A' ? 'B' : 'A';
    const std::string longer = Base64::encode(*Base64::decode(good) + "x");
    for (const std::string& signature :
         {other.sign("package"), ours.sign("Package"), changed, longer, good.substr(4), good + "\n", std::string()})
        EXPECT_FALSE(key->verifies("package", signature)) << signature;
    for (const std::string& text : {std::string(), std::string("x"), Base64::encode(std::string(31, 'k')),
                                    Base64::encode(std::string(33, 'k')), "-----BEGIN PUBLIC KEY-----" + ours.publicKey()})
        EXPECT_FALSE(PublicKey::fromBase64(text)) << text;
}

}  // namespace
}  // namespace halvane::util
