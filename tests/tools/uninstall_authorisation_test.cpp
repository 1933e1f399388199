#include "tools/UninstallAuthorisation.h"

#include "support/FakeDevice.h"
#include "support/ScriptedClient.h"
#include "util/Json.h"

#include <gtest/gtest.h>

#include <functional>

namespace halvane::tools {
namespace {

using util::Dictionary;
using util::Value;

class UninstallAuthorisationTest : public testing::Test {
protected:
    UninstallAuthorisationTest() {
        device.launcher.outputs["/usr/sbin/scutil"] = "laptop\n";
        signIn("chen.xiao@example.com");
    }

    void signIn(const Value& userName) {
        on.user.user_loginSuccessWithDic(Dictionary{{"job_number", "1001"}, {"token", "t-1"}, {"user_name", userName}});
    }
    void apply() { authorisation->applyVertifyCode(noting("apply")); }
    void verify(const std::string& code = "123456") { authorisation->verify(code, noting("verify")); }
    UninstallAuthorisation::Answer noting(const std::string& press) {
        return [this, press](const UninstallAuthorisation::Reply& reply) {
            constexpr const char* kKinds[] = {"sent", "refused", "authorised"};
            answers.push_back(press + ": " + kKinds[static_cast<int>(reply.kind)] + " " + reply.tip);
        };
    }

    void readFacts() { toolQueue.runPending(); }
    void send() {
        readFacts();
        on.mainLoop->runPending();
    }
    [[nodiscard]] std::vector<std::string> sent() const {
        std::vector<std::string> lines;
        for (const auto& exchange : on.transport.exchanges) lines.push_back(lineOf(exchange->request));
        return lines;
    }
    static std::string lineOf(const platform::HttpRequest& request) {
        return request.method + " " + request.url.substr(request.url.rfind('/') + 1) + " " + request.body;
    }

    test::ScriptedClient on;
    test::FakeDevice device;
    test::ManualMainLoop toolQueue;
    std::unique_ptr<UninstallAuthorisation> authorisation = std::make_unique<UninstallAuthorisation>(
        UninstallAuthorisation::Collaborators{toolQueue, on.mainLoop, on.user, on.requests, device.helper});
    std::vector<std::string> answers;
};

TEST_F(UninstallAuthorisationTest, requests_carry_who_and_which_computer) {
    struct Row {
        const char* name;
        Value userName;
        std::optional<util::Bytes> hostName;
        Value serial;
        const char* apply;
        const char* verify;
    };
    const Row rows[] = {
        {"ordinary", "chen.xiao@example.com", "laptop\n", "HV-1", R"({"username":"chen.xiao","host_name":"laptop","sn":"HV-1"})",
         R"({"username":"chen.xiao","host_name":"laptop","uninstall_num":"01ab"})"},
        {"short user name, broken host name", "a.b", "\nlap\ntop\n\n", "HV-1", R"({"username":"a.b","host_name":"laptop","sn":"HV-1"})",
         R"({"username":"a.b","host_name":"laptop","uninstall_num":"01ab"})"},
        {"cut at the first of two", "a.b@c@d", "laptop", "HV-1", R"({"username":"a.b","host_name":"laptop","sn":"HV-1"})",
         R"({"username":"a.b","host_name":"laptop","uninstall_num":"01ab"})"},
        {"nothing before the domain", "@example.com", "laptop", "HV-1", R"({"username":"@example.com","host_name":"laptop","sn":"HV-1"})",
         R"({"username":"@example.com","host_name":"laptop","uninstall_num":"01ab"})"},
        {"nothing known", nullptr, std::nullopt, nullptr, R"({"username":"","host_name":"","sn":""})",
         R"({"username":"","host_name":"","uninstall_num":"01ab"})"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        signIn(row.userName);
        device.launcher.outputs.clear();
        if (row.hostName) device.launcher.outputs["/usr/sbin/scutil"] = *row.hostName;
        device.properties = row.serial.isNull() ? Dictionary{} : Dictionary{{"IOPlatformSerialNumber", row.serial}};
        on.transport.exchanges.clear();
        apply();
        verify("01ab");
        send();
        EXPECT_EQ(sent(), (std::vector<std::string>{std::string("POST uninstall_apply ") + row.apply,
                                                    std::string("POST uninstall_sure ") + row.verify}));
    }
}

TEST_F(UninstallAuthorisationTest, with_nobody_signed_in_the_server_is_asked_all_the_same) {
    on.user.user_deleteUserInfo();
    apply();
    send();
    EXPECT_EQ(sent(), std::vector<std::string>{R"(POST uninstall_apply {"username":"","host_name":"laptop","sn":"HV-0001"})"});
    on.transport.replyJson(0, R"({"code":200})");
    EXPECT_EQ(answers, std::vector<std::string>{"apply: sent 安全码已发送至您的工作手机或邮箱"});
}

TEST_F(UninstallAuthorisationTest, an_empty_code_is_refused_at_once_and_asks_nobody) {
    verify("");
    EXPECT_EQ(answers, std::vector<std::string>{"verify: refused 请输入卸载码"});
    EXPECT_EQ(toolQueue.waiting(), 0U);
    verify(" ");
    send();
    EXPECT_EQ(sent().size(), 1U) << "only the server judges what was typed";
}

TEST_F(UninstallAuthorisationTest, replies_become_what_the_person_reads) {
    struct Row {
        const char* name;
        const char* reply;
        const char* applied;   ///< null: silence
        const char* verified;  ///< null: silence
    };
    constexpr const char* kSent = "apply: sent 安全码已发送至您的工作手机或邮箱";
    constexpr const char* kDone = "verify: authorised 卸载成功";
    constexpr const char* kNull = "verify: refused (null)";
    const Row rows[] = {
        {"a number", R"({"code":200,"msg":"m"})", kSent, kDone},
        {"a text", R"({"code":"200"})", kSent, kDone},
        {"a text with more", R"({"code":" 200 OK"})", kSent, kDone},
        {"a fraction", R"({"code":200.0})", kSent, kDone},
        {"refused by number", R"({"code":4003,"msg":"安全码错误"})", nullptr, "verify: refused 安全码错误"},
        {"refused by text", R"({"code":"4004","msg":"安全码已失效"})", nullptr, "verify: refused 安全码已失效"},
        {"a longer number", R"({"code":2000,"msg":"m"})", nullptr, "verify: refused m"},
        {"true", R"({"code":true,"msg":"m"})", nullptr, "verify: refused m"},
        {"a list as code", R"({"code":[200],"msg":"m"})", nullptr, "verify: refused m"},
        {"null as code", R"({"code":null,"msg":"m"})", nullptr, "verify: refused m"},
        {"no code", R"({"msg":"m"})", nullptr, "verify: refused m"},
        {"no message", R"({"code":500})", nullptr, kNull},
        {"null as message", R"({"code":500,"msg":null})", nullptr, kNull},
        {"an object as message", R"({"code":500,"msg":{"text":"m"}})", nullptr, kNull},
        {"a number as message", R"({"code":500,"msg":17})", nullptr, "verify: refused 17"},
        {"an empty message", R"({"code":500,"msg":""})", nullptr, "verify: refused "},
        {"nothing in it", "{}", nullptr, kNull},
        {"a list", "[200]", nullptr, kNull},
        {"a text alone", R"("200")", nullptr, kNull},
        {"null alone", "null", nullptr, kNull},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        answers.clear();
        on.transport.exchanges.clear();
        apply();
        verify();
        send();
        std::vector<std::string> expected;
        for (const char* answer : {row.applied, row.verified}) {
            if (answer != nullptr) expected.emplace_back(answer);
        }
        on.transport.replyJson(0, row.reply);
        on.transport.replyJson(1, row.reply);
        EXPECT_EQ(answers, expected);
    }
}

TEST_F(UninstallAuthorisationTest, whatever_fails_is_silence_and_the_next_press_works) {
    const std::pair<const char*, std::function<void(std::size_t)>> rows[] = {
        {"no connection", [this](std::size_t index) { on.transport.fail(index, util::UrlError::CannotConnect); }},
        {"idle for too long", [this](std::size_t index) { on.transport.fail(index, util::UrlError::TimedOut); }},
        {"a server's error",
         [this](std::size_t index) { on.transport.reply(index, 500, "application/json", R"({"code":200,"msg":"m"})"); }},
        {"no JSON", [this](std::size_t index) { on.transport.replyJson(index, "{\"code\":200"); }},
        {"another type", [this](std::size_t index) { on.transport.reply(index, 200, "image/png", R"({"code":200})"); }},
    };
    for (const auto& [name, fail] : rows) {
        SCOPED_TRACE(name);
        answers.clear();
        on.transport.exchanges.clear();
        apply();
        verify();
        send();
        fail(0);
        fail(1);
        EXPECT_TRUE(answers.empty());
        verify();
        send();
        on.transport.replyJson(2, R"({"code":200})");
        EXPECT_EQ(answers, std::vector<std::string>{"verify: authorised 卸载成功"});
    }
}

TEST_F(UninstallAuthorisationTest, facts_are_read_on_the_tool_queue_and_requests_leave_from_the_main_queue) {
    apply();
    on.mainLoop->runPending();
    EXPECT_TRUE(device.launcher.starts.empty());
    readFacts();
    EXPECT_EQ(device.launcher.starts, std::vector<std::string>{"/usr/sbin/scutil --get LocalHostName"});
    EXPECT_TRUE(sent().empty());
    on.mainLoop->runPending();
    EXPECT_EQ(sent().size(), 1U);
}

TEST_F(UninstallAuthorisationTest, presses_in_quick_succession_go_out_in_order_and_each_has_its_own_answer) {
    apply();
    verify("1");
    verify("2");
    apply();
    send();
    const auto lines = sent();
    ASSERT_EQ(lines.size(), 4U);
    const char* parts[] = {"uninstall_apply", R"("uninstall_num":"1")", R"("uninstall_num":"2")", "uninstall_apply"};
    for (std::size_t i = 0; i < lines.size(); ++i) EXPECT_NE(lines[i].find(parts[i]), std::string::npos) << lines[i];

    on.transport.replyJson(2, R"({"code":4003,"msg":"second"})");
    on.transport.replyJson(3, R"({"code":200})");
    on.transport.replyJson(1, R"({"code":4003,"msg":"first"})");
    on.transport.fail(0, util::UrlError::ConnectionLost);
    EXPECT_EQ(answers, (std::vector<std::string>{"verify: refused second", "apply: sent 安全码已发送至您的工作手机或邮箱",
                                                 "verify: refused first"}));
}

TEST_F(UninstallAuthorisationTest, the_name_is_that_of_whoever_pressed) {
    apply();
    signIn("li.na@example.com");
    verify();
    send();
    ASSERT_EQ(sent().size(), 2U);
    EXPECT_NE(sent()[0].find(R"("username":"chen.xiao")"), std::string::npos) << sent()[0];
    EXPECT_NE(sent()[1].find(R"("username":"li.na")"), std::string::npos) << sent()[1];
}

TEST_F(UninstallAuthorisationTest, after_its_end_nothing_is_sent_or_answered_whenever_that_comes) {
    const std::tuple<const char*, int, std::size_t> rows[] = {
        {"before the facts are read", 0, 0}, {"after they were read", 1, 0}, {"while the requests are under way", 2, 2}};
    for (const auto& [name, end, requests] : rows) {
        SCOPED_TRACE(name);
        on.transport.exchanges.clear();
        authorisation = std::make_unique<UninstallAuthorisation>(
            UninstallAuthorisation::Collaborators{toolQueue, on.mainLoop, on.user, on.requests, device.helper});
        apply();
        verify();
        const std::function<void()> steps[] = {[this] { readFacts(); }, [this] { on.mainLoop->runPending(); }, [] {}};
        for (int step = 0; step < static_cast<int>(std::size(steps)); ++step) {
            if (step == end) authorisation.reset();
            steps[step]();
        }
        EXPECT_EQ(sent().size(), requests);
        for (std::size_t i = 0; i < sent().size(); ++i) on.transport.replyJson(i, R"({"code":200})");
        EXPECT_TRUE(answers.empty());
    }
}

TEST_F(UninstallAuthorisationTest, an_answer_may_end_it) {
    authorisation->verify("1", [this](const UninstallAuthorisation::Reply& reply) {
        authorisation.reset();
        answers.push_back(reply.tip);
    });
    verify("2");
    send();
    for (std::size_t i : {0U, 1U}) on.transport.replyJson(i, R"({"code":200})");
    EXPECT_EQ(answers, std::vector<std::string>{"卸载成功"});
}

TEST_F(UninstallAuthorisationTest, what_an_answer_holds_is_let_go_when_the_press_is_over) {
    auto held = std::make_shared<int>();
    authorisation->applyVertifyCode([held](const auto&) {});
    const std::weak_ptr<int> watched = std::exchange(held, nullptr);
    readFacts();
    EXPECT_FALSE(watched.expired()) << "it is the main queue's to release";
    on.mainLoop->runPending();
    on.transport.fail(0, util::UrlError::TimedOut);
    EXPECT_TRUE(watched.expired());
}

}  // namespace
}  // namespace halvane::tools
