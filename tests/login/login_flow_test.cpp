#include "login/LoginStory.h"
#include "support/Eventually.h"
#include "support/ThreadQueue.h"
#include "util/Json.h"

#include <gtest/gtest.h>

namespace halvane::login {
namespace {

using Events = std::vector<std::string>;

constexpr const char* kChenAccepted =
    R"({"code":200,"msg":"ok","data":{"job_number":"HV1001","token":"t-new","user_name":"chen.xiao@example.com","numId":"1001"}})";

class LoginFlowTest : public testing::Test, protected LoginStory {
protected:
    bool storedAutoLogin() const { return util::booleanOf(on.preferences.saved.find("HDCL_ISAUTOLOGIN")); }
};

TEST_F(LoginFlowTest, the_first_start_offers_the_suffix_and_automatic_login) {
    start();
    settle();
    EXPECT_EQ(screen.userName, "@example.com");
    EXPECT_EQ(screen.passWord, "");
    EXPECT_TRUE(screen.autoLogin);
    EXPECT_EQ(requestCount(), 0U);
}

TEST_F(LoginFlowTest, stored_credentials_fill_the_fields_when_they_arrive) {
    const std::tuple<const char*, util::Value, util::Value, const char*, const char*> rows[] = {
        {"both", "chen@example.com", "pw", "chen@example.com", "pw"},
        {"no password", "chen@example.com", nullptr, "chen@example.com", ""},
        {"no name", nullptr, "pw", "", "pw"},
        {"a list where the name belongs", util::Value::List{}, "pw", "", "pw"},
    };
    for (const auto& [name, userName, passWord, shownName, shownPassWord] : rows) {
        SCOPED_TRACE(name);
        storeCredentials(userName, passWord);
        start();
        EXPECT_EQ(screen.userName, "@example.com");
        settle();
        EXPECT_EQ(screen.userName, shownName);
        EXPECT_EQ(screen.passWord, shownPassWord);
    }
}

TEST_F(LoginFlowTest, late_credentials_never_overwrite_what_was_typed) {
    storeCredentials("chen@example.com", "stored");
    start();
    screen.userName = "wang@example.com";
    screen.userNameTyped = true;
    settle();
    EXPECT_EQ(screen.userName, "wang@example.com");
    EXPECT_EQ(screen.passWord, "") << "another user's password";

    start();
    screen.passWord = "typed";
    screen.passWordTyped = true;
    screen.toggled = true;
    screen.autoLogin = true;
    settle();
    EXPECT_EQ(screen.userName, "chen@example.com");
    EXPECT_EQ(screen.passWord, "typed");
    EXPECT_TRUE(screen.autoLogin) << "toggled by the person";
}

TEST_F(LoginFlowTest, late_credentials_never_change_a_login_that_was_sent) {
    storeCredentials("chen@example.com", "stored");
    start();
    flow->loginAction();
    settle();
    EXPECT_EQ(screen.userName, "@example.com");
}

TEST_F(LoginFlowTest, the_switch_follows_the_preferences_and_automatic_login_wins) {
    struct Row {
        const char* name;
        bool record;
        std::optional<bool> remember, automatic;
        bool expected;
    };
    const Row rows[] = {
        {"nothing known", false, std::nullopt, std::nullopt, true},
        {"a user without a preference", true, std::nullopt, std::nullopt, false},
        {"only remember", false, false, std::nullopt, false},
        {"remember with a user", true, true, std::nullopt, true},
        {"automatic wins over remember", true, false, true, true},
        {"automatic off", false, true, false, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        on.preferences.values = {};
        keychain.items.clear();
        if (row.record) storeCredentials("chen@example.com", "pw");
        if (row.remember) on.preferences.set("HDCL_ISREMEPASSWORD", *row.remember);
        if (row.automatic) on.preferences.set("HDCL_ISAUTOLOGIN", *row.automatic);
        start();
        settle();
        EXPECT_EQ(screen.autoLogin, row.expected);
    }
}

TEST_F(LoginFlowTest, sends_the_recorded_request) {
    start();
    signIn();
    const auto recorded = test::goldenExchange("login");
    EXPECT_EQ(lastUrl(), "http://company.test" + recorded.request.target);
    EXPECT_EQ(lastBody(), recorded.request.body);
    EXPECT_EQ(events, Events{"busy"});
}

TEST_F(LoginFlowTest, facts_that_cannot_be_learnt_are_empty) {
    device.interfaceIndex = 0;
    device.launcher.outputs.clear();
    device.systemVersion = {};
    device.properties = {};
    start();
    signIn("", "");
    EXPECT_EQ(lastBody(), R"({"username":"","password":"","mac":"|","host_name":"","system":"","sn":"","token":""})");
}

TEST_F(LoginFlowTest, a_login_walks_through_its_steps_in_order) {
    start();
    signIn();
    answer(kChenAccepted);
    EXPECT_EQ(events, (Events{"busy", "idle", "login success", "main window"}));
    EXPECT_EQ(stateAtSuccess, "session, switch saved");
    EXPECT_FALSE(flow->isLogining());
    EXPECT_EQ(storedCredentials(), "chen.xiao@example.com Halvane-demo-1");
    EXPECT_TRUE(storedAutoLogin());
    EXPECT_EQ(on.user.user_getUserInfo()->token, "t-new");
    EXPECT_EQ(lastUrl(), "http://company.test/papi/admin/create_ad_cert");
    EXPECT_EQ(*on.last().request.headers.find("token-id"), "") << "asked for before the session was stored";
}

TEST_F(LoginFlowTest, code_is_read_from_numbers_and_texts) {
    for (const char* code : {"200", "\"200\"", "200.0", "\" 200 \""}) {
        SCOPED_TRACE(code);
        events.clear();
        start();
        signIn();
        answer(std::string(R"({"code":)") + code + "}");
        EXPECT_EQ(events.back(), "main window");
    }
}

TEST_F(LoginFlowTest, a_refused_login_shows_the_message_and_stays_busy_for_good) {
    struct Row {
        const char* name;
        const char* reply;
        Events seen;
    };
    const Row rows[] = {
        {"message", R"({"code":4001,"msg":"用户名或密码错误"})", {"busy", "tip 用户名或密码错误"}},
        {"no message", R"({"code":500})", {"busy"}},
        {"null message", R"({"code":500,"msg":null})", {"busy"}},
        {"number as message", R"({"code":500,"msg":7})", {"busy", "tip 7"}},
        {"no code", R"({"msg":"?"})", {"busy", "tip ?"}},
        {"a list", "[200]", {"busy"}},
        {"a text", "\"200\"", {"busy"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        events.clear();
        keychain.items.clear();
        start();
        signIn("wang@example.com", "wrong");
        answer(row.reply);
        EXPECT_EQ(events, row.seen);
        EXPECT_EQ(storedCredentials(), "wang@example.com wrong") << "rejected credentials replace the stored ones";
        const auto sent = requestCount();
        flow->loginAction();
        on.mainLoop->advance(std::chrono::hours(1));
        EXPECT_EQ(requestCount(), sent);
        EXPECT_TRUE(flow->isLogining());
    }
    EXPECT_EQ(on.user.user_getUserInfo(), nullptr);
}

TEST_F(LoginFlowTest, a_failed_login_says_so_stays_busy_and_stores_nothing) {
    for (const auto code : {util::UrlError::CannotConnect, util::UrlError::TimedOut}) {
        events.clear();
        start();
        signIn();
        on.transport.fail(requestCount() - 1, code);
        settle();
        flow->loginAction();
        settle();
        EXPECT_EQ(events, (Events{"busy", "tip 登陆出错"}));
        EXPECT_EQ(storedCredentials(), "none");
    }
    EXPECT_EQ(requestCount(), 2U);
}

TEST_F(LoginFlowTest, what_the_fields_hold_when_the_reply_arrives_is_stored) {
    start();
    signIn();
    type("li@example.com", "other");
    answer(kChenAccepted);
    EXPECT_EQ(storedCredentials(), "li@example.com other");
    EXPECT_EQ(lastBody(), R"({"username":"li","password":"other"})");
}

TEST_F(LoginFlowTest, success_without_data_opens_the_main_window_without_a_session) {
    for (const char* reply :
         {R"({"code":200})", R"({"code":200,"data":{}})", R"({"code":200,"data":[1]})", R"({"code":200,"data":null})"}) {
        SCOPED_TRACE(reply);
        events.clear();
        start();
        signIn();
        answer(reply);
        EXPECT_EQ(events, (Events{"busy", "idle", "login success", "main window"}));
        EXPECT_EQ(lastUrl(), "http://company.test/api/client/login");
        EXPECT_FALSE(on.user.user_isLogin());
    }
}

TEST_F(LoginFlowTest, the_listing_is_searched_for_the_servers_name_and_the_typed_one_is_asked_for) {
    struct Row {
        const char* name;
        const char* listing;
        const char* serverName;
        const char* typed;
        const char* askedFor;  ///< "" for no request
    };
    const Row rows[] = {
        {"installed", "  1) AB \"chen.xiao\"\n", "chen.xiao@example.com", "someone@example.com", ""},
        {"installed as a part of another name", "  1) AB \"li.chen.xiao2\"\n", "chen.xiao@example.com", "x", ""},
        {"missing", "  1) AB \"wang\"\n", "chen.xiao@example.com", "Chen.Xiao@other.org@x", "Chen.Xiao"},
        {"no at sign typed", "", "chen.xiao@example.com", "chen.xiao", "chen.xiao"},
        {"another company's suffix stays in the name", "\"chen.xiao\"", "chen.xiao@other.org", "chen.xiao", "chen.xiao"},
        {"nothing before the suffix", "anything", "@example.com", "chen.xiao", "chen.xiao"},
        {"unreadable listing", "\xFF", "chen.xiao@example.com", "chen.xiao", "chen.xiao"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        device.launcher.outputs["/usr/bin/security"] = row.listing;
        start();
        signIn(row.typed, "pw");
        const auto sent = requestCount();
        answer(util::Json::encode(util::Dictionary{{"code", 200}, {"data", util::Dictionary{{"user_name", row.serverName}}}}));
        if (row.askedFor[0] == '\0') {
            EXPECT_EQ(requestCount(), sent);
        } else {
            ASSERT_EQ(requestCount(), sent + 1);
            EXPECT_EQ(lastBody(), util::Json::encode(util::Dictionary{{"username", row.askedFor}, {"password", "pw"}}));
        }
    }
}

TEST_F(LoginFlowTest, automatic_login_takes_a_tenth_of_a_second_and_no_request) {
    on.user.user_loginSuccessWithDic(util::Dictionary{{"job_number", "1"}, {"token", ""}});
    on.preferences.set("HDCL_ISAUTOLOGIN", true);
    storeCredentials("chen@example.com", "pw");
    start();
    on.mainLoop->advance(std::chrono::milliseconds(99));
    EXPECT_EQ(events, Events{"busy"});
    on.mainLoop->advance(std::chrono::milliseconds(1));
    EXPECT_EQ(events, (Events{"busy", "idle", "login success", "main window"}));
    EXPECT_EQ(requestCount(), 0U);
    EXPECT_EQ(screen.userName, "chen@example.com") << "there after a logout";
}

TEST_F(LoginFlowTest, automatic_login_needs_the_switch_and_a_token) {
    const std::tuple<const char*, bool, util::Dictionary> rows[] = {
        {"switched off", false, {{"job_number", "1"}, {"token", "t"}}},
        {"no token", true, {{"job_number", "1"}}},
    };
    for (const auto& [name, automatic, session] : rows) {
        SCOPED_TRACE(name);
        on.user.user_loginSuccessWithDic(session);
        on.preferences.set("HDCL_ISAUTOLOGIN", automatic);
        start();
        on.mainLoop->advance(std::chrono::minutes(1));
        EXPECT_TRUE(events.empty());
    }
}

TEST_F(LoginFlowTest, the_switch_is_stored_at_once) {
    start();
    screen.autoLogin = false;
    flow->autoLoginAction();
    EXPECT_EQ(*on.preferences.saved.find("HDCL_ISAUTOLOGIN"), util::Value(false));
    EXPECT_EQ(on.preferences.flushes, 1);
}

TEST_F(LoginFlowTest, a_view_that_goes_away_hears_nothing_more) {
    start();
    signIn();
    flow.reset();
    answer(kChenAccepted);
    EXPECT_EQ(events, Events{"busy"});

    start();
    flow->loginAction();
    flow.reset();
    const auto sent = requestCount();
    settle();
    EXPECT_EQ(requestCount(), sent) << "gone while the facts were gathered";

    start();
    signIn();
    events.clear();
    on.transport.replyJson(requestCount() - 1, kChenAccepted);
    flow.reset();
    const auto asked = requestCount();
    settle();
    EXPECT_EQ(requestCount(), asked) << "gone while the certificates were listed";
    EXPECT_TRUE(events.empty());

    on.preferences.set("HDCL_ISAUTOLOGIN", true);
    on.user.user_loginSuccessWithDic(util::Dictionary{{"job_number", "1"}, {"token", ""}});
    storeCredentials("chen@example.com", "pw");
    start();
    flow.reset();
    events.clear();
    on.mainLoop->advance(std::chrono::seconds(1));
    EXPECT_TRUE(events.empty());
    EXPECT_EQ(screen.userName, "@example.com") << "gone before the credentials arrived";
}

TEST_F(LoginFlowTest, a_login_over_real_queues_touches_the_screen_on_the_main_loop_only) {
    test::ThreadQueue credentials;
    test::ThreadQueue tools;
    storeCredentials("old@example.com", "old");
    auto threaded = collaborators();
    LoginFlow onThreads(
        screen, {threaded.mainLoop, credentials, tools, threaded.preferences, threaded.browser, threaded.notifications, threaded.log,
                 threaded.user, threaded.keyChain, threaded.requests, threaded.device, threaded.certificates, threaded.deployment});
    const auto awaitMain = [this](const auto& reached) {
        return test::eventually([&] {
            settle();
            return reached();
        });
    };
    onThreads.viewBuilt();
    ASSERT_TRUE(awaitMain([&] { return screen.userName == "old@example.com"; }));
    type("chen.xiao@example.com", "Halvane-demo-1");
    onThreads.loginAction();
    ASSERT_TRUE(awaitMain([&] { return requestCount() == 1; }));
    on.transport.replyJson(0, kChenAccepted);
    ASSERT_TRUE(awaitMain([&] { return !events.empty() && events.back() == "main window"; }));
    ASSERT_TRUE(credentials.awaitPosted(2));
}

TEST_F(LoginFlowTest, without_a_secret_store_a_login_works_all_the_same) {
    keychain.unavailable = true;
    start();
    signIn();
    answer(kChenAccepted);
    EXPECT_EQ(events.back(), "main window");
}

TEST_F(LoginFlowTest, no_secret_reaches_the_log) {
    start();
    signIn();
    answer(kChenAccepted);
    EXPECT_TRUE(device.log.contains(R"("password":"<redacted>")"));
    EXPECT_TRUE(device.log.contains("登陆成功"));
    for (const char* secret : {"Halvane-demo-1", "t-new"}) EXPECT_FALSE(device.log.contains(secret)) << secret;
}

TEST_F(LoginFlowTest, empty_fields_raise_the_alert_only_when_they_are_verified) {
    start();
    screen.userName = "a";
    screen.passWord = "b";
    EXPECT_FALSE(flow->inputVerify());
    EXPECT_TRUE(events.empty());
    screen.passWord = "";
    EXPECT_FALSE(flow->inputVerify());
    EXPECT_EQ(events, Events{"alert 请输入用户名密码!"});
}

TEST_F(LoginFlowTest, the_password_page_opens_in_the_browser) {
    start();
    flow->forgetPWAction();
    EXPECT_EQ(browser.opened, Events{"http://sso.test/updatepwd/index"});
}

}  // namespace
}  // namespace halvane::login
