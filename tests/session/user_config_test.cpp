#include "session/HDCLUserConfig.h"

#include "support/MemoryDirectories.h"
#include "support/MemoryFileStore.h"
#include "support/MemoryPreferences.h"
#include "util/KeyedArchive.h"
#include "util/PropertyList.h"

#include <gtest/gtest.h>

namespace halvane::session {
namespace {

using util::Dictionary;

class UserConfigTest : public testing::Test {
protected:
    /// What a new start of the program would see.
    HDCLUserConfig restart() {
        preferences.values = preferences.saved;
        return {preferences, files, directories};
    }
    static Dictionary chen(const char* token = "t1") {
        return {{"job_number", "12345"}, {"token", token}, {"user_name", "chen.xiao@example.com"}, {"header_img", "http://h/a.png"}};
    }
    const std::filesystem::path chenFile = "/home/test/Documents/LoginFile/12345.plist";

    test::MemoryPreferences preferences;
    test::MemoryFileStore files;
    test::MemoryDirectories directories;
    HDCLUserConfig config{preferences, files, directories};
};

TEST_F(UserConfigTest, a_login_survives_a_restart_with_all_thirteen_fields) {
    Dictionary data;
    for (const char* key : {"department_name", "email", "header_img", "numId", "job_number", "nick_name", "role_id", "role_name", "status",
                            "token", "user_name", "work_address", "ad_cert_name"}) {
        data.set(key, std::string("the ") + key);
    }
    config.user_loginSuccessWithDic(data);
    const auto restored = restart().loadLastUser();
    ASSERT_TRUE(restored);
    EXPECT_EQ(*restored, HDCLUserModel::fromDictionary(data));
    EXPECT_EQ(restored->ad_cert_name, "the ad_cert_name");
    const auto archive = util::PropertyList::decode(files.files.at("/home/test/Documents/LoginFile/the job_number.plist"));
    const auto* objects = util::member(&*archive, "$objects");
    for (const auto& [key, value] : data) EXPECT_EQ(*util::member(objects, "Key_" + key), value);
}

TEST_F(UserConfigTest, puid_is_flushed_at_login_and_names_the_last_of_two_users) {
    config.user_loginSuccessWithDic(chen());
    EXPECT_EQ(*preferences.saved.find("puid"), util::Value("12345"));
    config.user_loginSuccessWithDic(Dictionary{{"job_number", 777}, {"token", "t2"}});
    EXPECT_TRUE(files.files.contains(chenFile));
    EXPECT_EQ(restart().user_getUserInfo()->token, "t2");
}

TEST_F(UserConfigTest, an_empty_or_absent_dictionary_changes_nothing) {
    config.user_loginSuccessWithDic(chen());
    files.calls.clear();
    config.user_loginSuccessWithDic(Dictionary{});
    config.user_loginSuccessWithDic(std::nullopt);
    EXPECT_EQ(config.user_getUserInfo()->token, "t1");
    EXPECT_TRUE(files.calls.empty());
}

TEST_F(UserConfigTest, without_a_job_number_the_session_lasts_for_this_run_only) {
    config.user_loginSuccessWithDic(chen());
    config.user_loginSuccessWithDic(Dictionary{{"token", "t"}});
    EXPECT_TRUE(config.user_isLogin());
    EXPECT_FALSE(restart().user_isLogin());
    EXPECT_EQ(files.files.size(), 1U);
}

TEST_F(UserConfigTest, signed_in_means_a_token_even_an_empty_one) {
    const std::tuple<const char*, Dictionary, bool> rows[] = {
        {"token", {{"job_number", "1"}, {"token", "x"}}, true},
        {"empty token", {{"job_number", "1"}, {"token", ""}}, true},
        {"number", {{"job_number", "1"}, {"token", 5}}, true},
        {"null token", {{"job_number", "1"}, {"token", nullptr}}, false},
        {"a list where the token belongs", {{"job_number", "1"}, {"token", util::Value::List{}}}, false},
        {"no token", {{"job_number", "1"}}, false},
    };
    for (const auto& [name, data, expected] : rows) {
        SCOPED_TRACE(name);
        config.user_loginSuccessWithDic(data);
        EXPECT_EQ(config.user_isLogin(), expected);
        EXPECT_EQ(restart().user_isLogin(), expected);
    }
}

TEST_F(UserConfigTest, deletion_keeps_puid_and_a_file_that_stays_signs_in_again) {
    config.user_loginSuccessWithDic(chen());
    preferences.set("KEY_WORKADDRESS", "not yet written");
    config.user_deleteUserInfo();
    EXPECT_FALSE(config.user_isLogin());
    EXPECT_FALSE(files.files.contains(chenFile));
    EXPECT_NE(preferences.saved.find("KEY_WORKADDRESS"), nullptr);
    EXPECT_EQ(*preferences.saved.find("puid"), util::Value("12345"));

    config.user_loginSuccessWithDic(chen());
    files.refuseRemoval = true;
    config.user_deleteUserInfo();
    EXPECT_TRUE(config.user_isLogin());
}

TEST_F(UserConfigTest, an_update_clears_the_avatar_for_any_ordinary_dictionary) {
    config.user_loginSuccessWithDic(chen());
    config.user_updateLocalInfoWithDic(std::nullopt);
    EXPECT_EQ(restart().user_getUserInfo()->header_img, "http://h/a.png");
    config.user_updateLocalInfoWithDic(Dictionary{{"", "http://h/b.png"}});
    EXPECT_EQ(restart().user_getUserInfo()->header_img, "http://h/b.png");
    config.user_updateLocalInfoWithDic(Dictionary{{"header_img", "http://h/c.png"}});
    EXPECT_EQ(restart().user_getUserInfo()->header_img, std::nullopt);
    EXPECT_EQ(config.user_getUserInfo()->token, "t1");
}

TEST_F(UserConfigTest, absent_only_rearchives) {
    config.user_loginSuccessWithDic(chen());
    files.files.clear();
    config.user_updateLocalInfoWithDic(std::nullopt);
    EXPECT_TRUE(files.files.contains(chenFile));
}

TEST_F(UserConfigTest, a_session_file_that_cannot_be_read_means_signed_out) {
    config.user_loginSuccessWithDic(chen());
    const auto good = files.files.at(chenFile);
    const std::pair<const char*, util::Bytes> rows[] = {
        {"empty", ""},
        {"cut off", good.substr(0, good.size() / 2)},
        {"another class", util::KeyedArchive::encode("WorkAddressModel", {{"Key_token", "x"}})},
        {"a plain property list", util::PropertyList::encode(chen())},
        {"html", "<html></html>"},
    };
    for (const auto& [name, bytes] : rows) {
        SCOPED_TRACE(name);
        files.files[chenFile] = bytes;
        EXPECT_FALSE(restart().user_isLogin());
    }
    files.files[chenFile] = good;
    EXPECT_TRUE(restart().user_isLogin());
    files.unreadable.insert(chenFile);
    EXPECT_FALSE(restart().user_isLogin());
}

TEST_F(UserConfigTest, disk_failures_leave_the_session_of_this_run) {
    for (bool test::MemoryFileStore::*refusal : {&test::MemoryFileStore::refuseWrites, &test::MemoryFileStore::refuseDirectories}) {
        test::MemoryFileStore full;
        full.*refusal = true;
        HDCLUserConfig onFullDisk(preferences, full, directories);
        onFullDisk.user_loginSuccessWithDic(chen());
        EXPECT_TRUE(onFullDisk.user_isLogin());
        EXPECT_TRUE(full.files.empty());
    }
}

TEST_F(UserConfigTest, ids_that_would_leave_the_directory_name_no_file) {
    EXPECT_EQ(config.filePathWithUid("12345"), chenFile);
    EXPECT_EQ(config.filePathWithUid("a b"), "/home/test/Documents/LoginFile/a b.plist");
    for (const char* uid : {"", ".", "..", "../x", "a/b", "/etc/passwd"}) EXPECT_FALSE(config.filePathWithUid(uid)) << uid;
    EXPECT_FALSE(config.filePathWithUid(std::nullopt));
    files.files[chenFile] = HDCLUserModel::fromDictionary(chen()).archived();
    preferences.set("puid", "12345");
    EXPECT_TRUE(config.loadLastUser());
    preferences.set("puid", 12345);
    EXPECT_FALSE(config.loadLastUser()) << "a number is no user id";
}

}  // namespace
}  // namespace halvane::session
