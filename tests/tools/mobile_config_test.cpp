#include "tools/HVMobileConfigTool.h"

#include "support/FakeAuthorization.h"
#include "support/FakeDevice.h"
#include "support/MemoryDirectories.h"
#include "support/MemoryFileStore.h"
#include "util/PropertyList.h"

#include <gtest/gtest.h>

namespace halvane::tools {
namespace {

using util::Dictionary;
using util::Value;

class MobileConfigTest : public testing::Test {
protected:
    MobileConfigTest() { setTemplate(templateWith("com.example.wifi")); }

    static Value templateWith(Value identifier) {
        return Dictionary{{"PayloadContent", Value::List{Dictionary{{"PayloadIdentifier", std::move(identifier)},
                                                                    {"PayloadDisplayName", "as shipped"},
                                                                    {"PayloadCertificateFileName", "shipped.p12"},
                                                                    {"Password", "shippedPw"}},
                                                         Dictionary{{"PayloadIdentifier", "second"}, {"Password", "untouched"}}}},
                          {"PayloadType", "Configuration"}};
    }
    void setTemplate(const Value& value) { files.files["/home/test/Resources/brelton.mobileconfig"] = util::PropertyList::encode(value); }

    std::string build(const std::optional<std::string>& name = "chen.xiao", const std::optional<std::string>& password = "s3cret",
                      const util::Bytes& data = util::Bytes("\x00\x30p12", 5)) {
        return tool.configFilePathWithTemplateFilePath("brelton.mobileconfig", name, password, data);
    }
    std::string written(const std::string& file, std::size_t payload, const char* key) {
        const auto profile = util::PropertyList::decode(files.files.at(file));
        const auto* value = util::member(&(*util::member(&*profile, "PayloadContent")->list())[payload], key);
        return value->data() != nullptr ? *value->data() : *value->text();
    }

    const std::string path = "/home/test/Temporary/XMMBConfWeb/com.example.wifi.mobileconfig";
    test::MemoryFileStore files;
    test::MemoryDirectories directories;
    test::FakeDevice on;
    test::FakeAdministrator administrator;
    HVMobileConfigTool tool{{files, directories, on.launcher, on.helper, on.log, administrator.collaborators}};
};

TEST_F(MobileConfigTest, fills_the_first_payload_and_leaves_the_rest) {
    ASSERT_EQ(build(), path);
    EXPECT_EQ(written(path, 0, "Password"), "s3cret");
    EXPECT_EQ(written(path, 0, "PayloadCertificateFileName"), "chen.xiao");
    EXPECT_EQ(written(path, 0, "PayloadDisplayName"), "chen.xiao");
    EXPECT_EQ(written(path, 0, "PayloadContent"), util::Bytes("\x00\x30p12", 5));
    EXPECT_EQ(written(path, 1, "Password"), "untouched");
    EXPECT_TRUE(on.log.contains("fileDict:"));
    EXPECT_TRUE(on.log.contains("saveFile:"));
    for (const char* secret : {"s3cret", "shippedPw", "untouched"}) EXPECT_FALSE(on.log.contains(secret)) << secret;
}

TEST_F(MobileConfigTest, nothing_given_means_the_default_password_the_templates_names_and_empty_bytes) {
    for (const std::optional<std::string>& nothing : {std::optional<std::string>(), std::optional<std::string>("")}) {
        ASSERT_EQ(build(nothing, nothing, ""), path);
        EXPECT_EQ(written(path, 0, "Password"), "tarnelk.quopse");
        EXPECT_EQ(written(path, 0, "PayloadCertificateFileName"), "shipped.p12");
        EXPECT_EQ(written(path, 0, "PayloadDisplayName"), "as shipped");
        EXPECT_EQ(written(path, 0, "PayloadContent"), "");
    }
}

TEST_F(MobileConfigTest, a_second_profile_replaces_the_first) {
    ASSERT_EQ(build("a"), path);
    ASSERT_EQ(build("b"), path);
    EXPECT_EQ(written(path, 0, "PayloadDisplayName"), "b");
}

TEST_F(MobileConfigTest, templates_that_cannot_be_filled_write_nothing) {
    const std::pair<const char*, Value> rows[] = {
        {"no payloads", Dictionary{{"PayloadContent", Value::List{}}}},
        {"payloads of another kind", Dictionary{{"PayloadContent", "x"}}},
        {"first payload of another kind", Dictionary{{"PayloadContent", Value::List{"x"}}}},
        {"a list", Value::List{}},
        {"no identifier", templateWith(nullptr)},
        {"climbing identifier", templateWith("../../x")},
        {"absolute identifier", templateWith("/etc/x")},
        {"parent as identifier", templateWith("..")},
    };
    for (const auto& [name, value] : rows) {
        SCOPED_TRACE(name);
        setTemplate(value);
        EXPECT_EQ(build(), "");
        EXPECT_EQ(files.files.size(), 1U);
    }
    files.files["/home/test/Resources/brelton.mobileconfig"] = "not a property list";
    EXPECT_EQ(build(), "");
    files.files.clear();
    EXPECT_EQ(build(), "");
    EXPECT_TRUE(files.files.empty());
}

TEST_F(MobileConfigTest, a_failed_write_gives_no_path_and_keeps_the_older_profile) {
    ASSERT_EQ(build("old"), path);
    files.refuseWrites = true;
    EXPECT_EQ(build("new"), "");
    EXPECT_EQ(written(path, 0, "PayloadDisplayName"), "old");
}

TEST_F(MobileConfigTest, the_company_network_is_joined_after_the_tool_ended_however_it_ended) {
    on.launcher.outputs = {{"/usr/bin/profiles", ""}, {"/usr/sbin/networksetup", ""}};
    for (const int status : {0, 1, 137}) {
        on.launcher.starts.clear();
        tool.installMobileConfigFileWithFilePath(status == 0 ? path : "");
        EXPECT_EQ(on.launcher.starts, std::vector<std::string>{"/usr/bin/profiles install -path " + (status == 0 ? path : "")});
        on.launcher.terminateFirst(status);
        EXPECT_EQ(on.launcher.starts.back(), "/usr/sbin/networksetup -setairportnetwork en0 test_dot1x");
    }
}

TEST_F(MobileConfigTest, a_tool_that_cannot_be_started_is_logged_and_joins_nothing) {
    on.launcher.outputs = {{"/usr/sbin/networksetup", ""}};
    tool.installMobileConfigFileWithFilePath(path);
    EXPECT_EQ(on.launcher.starts.size(), 1U);
    EXPECT_TRUE(on.log.contains("/usr/bin/profiles"));
}

TEST_F(MobileConfigTest, a_removal_waits_unless_the_question_was_dismissed) {
    struct Row {
        const char* name;
        platform::OSStatus refused;   // when the rights are asked for
        platform::OSStatus executed;  // by the execution
        std::vector<std::string> logged;
    };
    const Row rows[] = {
        {"done", 0, 0, {}},
        {"dismissed", -60006, 0, {"User cancelled"}},
        {"dismissed later", 0, -60006, {"User cancelled"}},
        {"refused", -60005, 0, {"Something went wrong: -60005", "is not running"}},
        {"could not be executed", 0, -60031, {"Something went wrong: -60031", "is not running"}},
    };
    for (const auto& [name, refused, executed, logged] : rows) {
        SCOPED_TRACE(name);
        test::FakeAdministrator asked;
        asked.authorization.rightsStatus = refused;
        asked.authorization.executeStatus = executed;
        asked.authorization.endsAfter = 3;
        test::FakeDevice own;
        HVMobileConfigTool({files, directories, own.launcher, own.helper, own.log, asked.collaborators})
            .removeMobileConfigFileWithName("/p");
        EXPECT_EQ(asked.authorization.collections, logged.empty() ? 3 : 0);
        EXPECT_EQ(own.log.lines().size() + asked.log.lines().size(), logged.size());
        if (!logged.empty()) {
            EXPECT_EQ(own.log.lines().front(), logged.front());
        }
        if (logged.size() == 2) {
            EXPECT_NE(asked.log.lines().front().find(logged[1]), std::string::npos);
        }
        EXPECT_TRUE(own.launcher.starts.empty());
        if (refused == 0) {
            EXPECT_EQ(asked.authorization.calls[2], "execute 7 /usr/bin/profiles [remove] [-path] [/p] in /here");
        }
    }
}

}  // namespace
}  // namespace halvane::tools
