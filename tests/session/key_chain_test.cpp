#include "session/KTKeyChain.h"

#include "support/MemoryKeychain.h"
#include "support/RecordingLog.h"
#include "util/KeyedArchive.h"

#include <gtest/gtest.h>

namespace halvane::session {
namespace {

class KeyChainTest : public testing::Test {
protected:
    const std::string service = "com.example.clouddisk.usernamepassword";
    const util::Value record = util::Dictionary{{"u", "chen"}, {"p", "秘密 \"<&"}};

    test::MemoryKeychain keychain;
    test::RecordingLog log;
    KTKeyChain chain{keychain, log};
};

TEST_F(KeyChainTest, a_save_replaces_and_leaves_exactly_one_item) {
    chain.saveInfo(service, "first");
    chain.saveInfo(service, record);
    EXPECT_EQ(keychain.items.size(), 1U);
    EXPECT_EQ(chain.loadInfo(service), record);
    EXPECT_EQ(keychain.calls[2], "remove " + service);
    EXPECT_EQ(keychain.calls[3], "add " + service);
}

TEST_F(KeyChainTest, a_failed_save_leaves_no_item) {
    chain.saveInfo(service, record);
    keychain.refuseAdd = true;
    chain.saveInfo(service, "second");
    EXPECT_EQ(chain.loadInfo(service), std::nullopt);
}

TEST_F(KeyChainTest, deleted_means_absent) {
    chain.saveInfo(service, record);
    chain.delInfo(service);
    EXPECT_EQ(chain.loadInfo(service), std::nullopt);
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(KeyChainTest, another_programs_bytes_are_absent_and_logged_without_their_content) {
    for (const util::Bytes& bytes : {util::Bytes("hunter2"), util::KeyedArchive::encode("hunter2", {{"root", "hunter2"}}),
                                     util::KeyedArchive::encode("KTKeyChainRecord", {{"other", "hunter2"}})}) {
        keychain.items[service] = bytes;
        const auto before = log.lines().size();
        EXPECT_EQ(chain.loadInfo(service), std::nullopt);
        ASSERT_EQ(log.lines().size(), before + 1);
        EXPECT_TRUE(log.lines().back().starts_with("Unarchive of " + service + " failed: "));
        EXPECT_FALSE(log.contains("hunter2"));
    }
}

TEST_F(KeyChainTest, without_a_store_loads_find_nothing_in_silence) {
    keychain.unavailable = true;
    chain.saveInfo(service, record);
    EXPECT_EQ(chain.loadInfo(service), std::nullopt);
    chain.delInfo(service);
    EXPECT_TRUE(log.lines().empty());
}

}  // namespace
}  // namespace halvane::session
