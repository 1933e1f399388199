#include "util/Digest.h"

#include "support/RepeatedText.h"

#include <gtest/gtest.h>

#include <numeric>

namespace halvane::util {
namespace {

using test::times;

const std::string kFiveTwelveBits = "abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq";
const std::string kNineHundredBits =
    "abcdefghbcdefghicdefghijdefghijkefghijklfghijklmghijklmnhijklmnoijklmnopjklmnopqklmnopqrlmnopqrsmnopqrstnopqrstu";

TEST(Digest, md5_by_the_vectors_of_rfc_1321) {
    const std::pair<std::string, const char*> rows[] = {
        {"", "d41d8cd98f00b204e9800998ecf8427e"},
        {"a", "0cc175b9c0f1b6a831c399e269772661"},
        {"abc", "900150983cd24fb0d6963f7d28e17f72"},
        {"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
        {"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
        {"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789", "d174ab98d277d9f5a5611c2c9f419d9f"},
        {times(8, "1234567890"), "57edf4a22be3c955ac49da2e2107b67a"},
    };
    for (const auto& [text, digest] : rows) {
        EXPECT_EQ(Digest::md5String(text), digest) << text;
        EXPECT_EQ(Digest::md5String(Value::Data{text}), digest) << text;
    }
}

TEST(Digest, sha_by_the_vectors_of_rfc_6234) {
    const std::tuple<std::string (*)(std::string_view), std::string, const char*> rows[] = {
        {Digest::sha1String, "abc", "a9993e364706816aba3e25717850c26c9cd0d89d"},
        {Digest::sha1String, kFiveTwelveBits, "84983e441c3bd26ebaae4aa1f95129e5e54670f1"},
        {Digest::sha1String, times(1000000, "a"), "34aa973cd4c4daa4f61eeb2bdbad27316534016f"},
        {Digest::sha1String, times(80, "01234567"), "dea356a2cddd90c7a7ecedc5ebb563934f460452"},
        {Digest::sha1String, "\x9a\x7d\xfd\xf1\xec\xea\xd0\x6e\xd6\x46\xaa\x55\xfe\x75\x71\x46",
         "82abff6605dbe1c17def12a394fa22a82b544a35"},
        {Digest::sha256String, "abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
        {Digest::sha256String, kFiveTwelveBits, "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1"},
        {Digest::sha256String, times(1000000, "a"), "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"},
        {Digest::sha256String, times(80, "01234567"), "594847328451bdfa85056225462cc1d867d877fb388df0ce35f25ab5562bfbb5"},
        {Digest::sha256String, "\xe3\xd7\x25\x70\xdc\xdd\x78\x7c\xe3\x88\x7a\xb2\xcd\x68\x46\x52",
         "175ee69b02ba9b58e2b0a5fd13819cea573f3940a94f825128cf4209beabb4e8"},
        {Digest::sha512String, "abc",
         "ddaf35a193617abacc417349ae20413112e6fa4e89a97ea20a9eeee64b55d39a2192992a274fc1a836ba3c23a3feebbd454d4423643ce80e2a9ac94fa54ca49"
         "f"},
        {Digest::sha512String, kNineHundredBits,
         "8e959b75dae313da8cf4f72814fc143f8f7779c6eb9f7fa17299aeadb6889018501d289e4900f7e4331b99dec4b5433ac7d329eeb6dd26545e96e55b874be90"
         "9"},
        {Digest::sha512String, times(1000000, "a"),
         "e718483d0ce769644e2e42c7bc15b4638e1f98b13b2044285632a803afa973ebde0ff244877ea60a4cb0432ce577c31beb009c5c2c49aa2e4eadb217ad8cc09"
         "b"},
        {Digest::sha512String, times(80, "01234567"),
         "89d05ba632c699c31231ded4ffc127d5a894dad412c0e024db872d1abd2ba8141a0f85072a9be1e2aa04cf33c765cb510813a39cd5a84c4acaa64d3f3fb7bae"
         "9"},
        {Digest::sha512String, "\x8d\x4e\x3c\x0e\x38\x89\x19\x14\x91\x81\x6e\x9d\x98\xbf\xf0\xa0",
         "cb0b67a4b8712cd73c9aabc0b199e9269b20844afb75acbdd1c153c9828924c3ddedaafe669c5fdd0bc66f630f6773988213eb1b16f517ad0de4b2f0c95c90f"
         "8"},
    };
    for (const auto& [digest, text, expected] : rows) EXPECT_EQ(digest(text), expected) << text.substr(0, 60);
}

struct KeyedRow {
    std::string key;
    std::string text;
    const char* digest;
    const char* longer = "";  ///< by SHA-512
};

std::string bytesFromOneOn(unsigned char last) {
    std::string bytes(last, '\0');
    std::iota(bytes.begin(), bytes.end(), '\1');
    return bytes;
}

TEST(Digest, keyed_sha1_by_the_vectors_of_rfc_2202) {
    const KeyedRow rows[] = {
        {std::string(20, '\x0b'), "Hi There", "b617318655057264e28bc0b6fb378c8ef146be00"},
        {"Jefe", "what do ya want for nothing?", "effcdf6ae5eb2fa2d27416d5f184df9c259a7c79"},
        {std::string(20, '\xaa'), std::string(50, '\xdd'), "125d7342b9ac11cd91a39af48aa17b4f63f175d3"},
        {bytesFromOneOn(25), std::string(50, '\xcd'), "4c9007f4026250c6bc8414f9bf50c86c2d7235da"},
        {std::string(20, '\x0c'), "Test With Truncation", "4c1a03424b55e07fe7f27be1d58bb9324a9a5a04"},
        {std::string(80, '\xaa'), "Test Using Larger Than Block-Size Key - Hash Key First", "aa4ae5e15272d00e95705637ce8a3b55ed402112"},
        {std::string(80, '\xaa'), "Test Using Larger Than Block-Size Key and Larger Than One Block-Size Data",
         "e8e99d0f45237d786d6bbaa7965c7808bbff1a91"},
    };
    for (const auto& row : rows) EXPECT_EQ(Digest::hmacSHA1StringWithKey(row.text, row.key), row.digest) << row.text;
}

TEST(Digest, keyed_sha256_and_sha512_by_the_vectors_of_rfc_4231) {
    const KeyedRow rows[] = {
        {std::string(20, '\x0b'), "Hi There", "b0344c61d8db38535ca8afceaf0bf12b881dc200c9833da726e9376c2e32cff7",
         "87aa7cdea5ef619d4ff0b4241a1d6cb02379f4e2ce4ec2787ad0b30545e17cdedaa833b7d6b8a702038b274eaea3f4e4be9d914eeb61f1702e696c203a12685"
         "4"},
        {"Jefe", "what do ya want for nothing?", "5bdcc146bf60754e6a042426089575c75a003f089d2739839dec58b964ec3843",
         "164b7a7bfcf819e2e395fbe73b56e0a387bd64222e831fd610270cd7ea2505549758bf75c05a994a6d034f65f8f0e6fdcaeab1a34d4a6b4b636e070a38bce73"
         "7"},
        {std::string(20, '\xaa'), std::string(50, '\xdd'), "773ea91e36800e46854db8ebd09181a72959098b3ef8c122d9635514ced565fe",
         "fa73b0089d56a284efb0f0756c890be9b1b5dbdd8ee81a3655f83e33b2279d39bf3e848279a722c806b485a47e67c807b946a337bee8942674278859e13292f"
         "b"},
        {bytesFromOneOn(25), std::string(50, '\xcd'), "82558a389a443c0ea4cc819899f2083a85f0faa3e578f8077a2e3ff46729665b",
         "b0ba465637458c6990e5a8c5f61d4af7e576d97ff94b872de76f8050361ee3dba91ca5c11aa25eb4d679275cc5788063a5f19741120c4f2de2adebeb10a298d"
         "d"},
        {std::string(20, '\x0c'), "Test With Truncation", "a3b6167473100ee06e0c796c2955552b", "415fad6271580a531d4179bc891d87a6"},
        {std::string(131, '\xaa'), "Test Using Larger Than Block-Size Key - Hash Key First",
         "60e431591ee0b67f0d8a26aacbf5b77f8e0bc6213728c5140546040f0ee37f54",
         "80b24263c7c1a3ebb71493c1dd7be8b49b46d1f41b4aeec1121b013783f8f3526b56d037e05f2598bd0fd2215d6a1e5295e64f73f63f0aec8b915a985d78659"
         "8"},
        {std::string(131, '\xaa'),
         "This is a test using a larger than block-size key and a larger than block-size data. The key needs to be hashed before being "
         "used by "
         "the HMAC algorithm.",
         "9b09ffa71b942fcb27635fbcd5b0e944bfdc63644f0713938a7f51535c3a35e2",
         "e37b6a775dc87dbaa4dfa9f96e5e3ffddebd71f8867289865df5a32d20cdc944b6022cac3c4982b10d5eeb55c3e4de15134676fb6de0446065c97440fa8c6a5"
         "8"},
    };
    for (const auto& [key, text, sha256, sha512] : rows) {
        // One row gives only the beginning of its digest.
        EXPECT_EQ(Digest::hmacSHA256StringWithKey(text, key).substr(0, std::string_view(sha256).size()), sha256) << text;
        EXPECT_EQ(Digest::hmacSHA512StringWithKey(text, key).substr(0, std::string_view(sha512).size()), sha512) << text;
    }
    EXPECT_EQ(Digest::hmacSHA256StringWithKey("x", "y").size(), 64U);
    EXPECT_EQ(Digest::hmacSHA512StringWithKey("x", "y").size(), 128U);
}

TEST(Digest, texts_end_at_their_first_nul_and_data_and_keyed_texts_do_not) {
    const std::string text("abc\0def", 7);
    for (const auto digest :
         {Digest::sha1String, Digest::sha256String, Digest::sha512String, +[](std::string_view t) { return Digest::md5String(t); }}) {
        EXPECT_EQ(digest(text), digest("abc"));
        EXPECT_EQ(digest(std::string_view("\0", 1)), digest(""));
    }
    EXPECT_EQ(Digest::md5String(Value::Data{text}), "a5e4d5963ae44c1f4bfb37b1a3d55a3c");
    for (const auto keyed : {Digest::hmacSHA1StringWithKey, Digest::hmacSHA256StringWithKey, Digest::hmacSHA512StringWithKey}) {
        EXPECT_NE(keyed(text, "key"), keyed("abc", "key"));
        EXPECT_NE(keyed("text", text), keyed("text", "abc"));
    }
}

TEST(Digest, nothing_has_a_digest_as_well) {
    EXPECT_EQ(Digest::hmacSHA1StringWithKey("", ""), "fbdb1d1b18aa6c08324b7d64b71fb76370690e1d");
    EXPECT_EQ(Digest::hmacSHA256StringWithKey({}, {}), "b613679a0814d9ec772f95d778c35fc5ff1697c493715653c6c712144292c5ad");
    EXPECT_EQ(Digest::md5String(Value::Data{}), "d41d8cd98f00b204e9800998ecf8427e");
}

TEST(Digest, bytes_are_written_as_two_small_digits_each) {
    const unsigned char bytes[] = {0x00, 0x01, 0x0f, 0x10, 0x7f, 0x80, 0xff};
    EXPECT_EQ(Digest::stringFromBytes(bytes, sizeof bytes), "00010f107f80ff");
    EXPECT_EQ(Digest::stringFromBytes(bytes, 1), "00");
    EXPECT_EQ(Digest::stringFromBytes(nullptr, 0), "");
}

}  // namespace
}  // namespace halvane::util
