#include "service/APIClient.h"

#include "support/ScriptedClient.h"
#include "util/Json.h"

#include <gtest/gtest.h>

namespace halvane::service {
namespace {

using util::Dictionary;
using util::UrlError;

class ApiClientTest : public testing::Test {
protected:
    /// Sends and writes down how it is answered, as "code object error-code".
    void send(int method, const std::optional<Dictionary>& params = std::nullopt, const std::string& url = "http://h/{id}/p") {
        on.client->requestURL(url, method, params,
                              [this](int code, const std::optional<util::Value>& object, const std::optional<util::Error>& error) {
                                  answers.push_back(std::to_string(code) + " " + (object ? util::Json::encode(*object) : "-") + " " +
                                                    (error ? std::to_string(error->code) : "-"));
                              });
    }
    std::string header(const char* name) {
        const auto* value = on.last().request.headers.find(name);
        return value == nullptr ? "absent" : *value;
    }

    test::ScriptedClient on;
    std::vector<std::string> answers;
};

TEST_F(ApiClientTest, method_codes_decide_verb_address_and_body) {
    struct Row {
        int code;
        const char* verb;
        const char* url;
        const char* body;
    };
    const Row rows[] = {
        {0, "GET", "http://h/{id}/p", ""},    {1, "POST", "http://h/{id}/p", R"({"id":"a b","n":7})"},
        {2, "DELETE", "http://h/{id}/p", ""}, {3, "PUT", "http://h/{id}/p", R"({"id":"a b","n":7})"},
        {4, "GET", "http://h/a%20b/p", ""},   {5, "GET", "http://h/%7Bid%7D/p?id=a%20b&n=7", ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.code);
        send(row.code, Dictionary{{"id", "a b"}, {"n", 7}});
        EXPECT_EQ(on.last().request.method, row.verb);
        EXPECT_EQ(on.last().request.url, row.url);
        EXPECT_EQ(on.last().request.body, row.body);
        EXPECT_EQ(header("Content-Type"), "application/json; charset=utf-8");
        EXPECT_TRUE(on.last().resumed);
    }
    EXPECT_EQ(on.transport.sessions.size(), 1U);
}

TEST_F(ApiClientTest, other_method_codes_send_nothing_and_never_answer) {
    for (const int code : {-1, 6, 7}) send(code, Dictionary{{"a", 1}});
    on.mainLoop->advance(std::chrono::hours(1));
    EXPECT_TRUE(on.transport.exchanges.empty());
    EXPECT_TRUE(answers.empty());
}

TEST_F(ApiClientTest, requests_run_with_the_transports_own_time_out) {
    send(0);
    EXPECT_EQ(on.last().request.timeout, platform::HttpRequest::kDefaultTimeout);
}

TEST_F(ApiClientTest, the_token_of_the_moment_goes_with_each_request) {
    send(0);
    EXPECT_EQ(header("token-id"), "");
    on.user.user_loginSuccessWithDic(Dictionary{{"job_number", "1"}, {"token", "t1"}});
    send(0);
    EXPECT_EQ(header("token-id"), "t1");
    on.user.user_deleteUserInfo();
    send(0);
    EXPECT_EQ(header("token-id"), "");
    on.user.user_loginSuccessWithDic(Dictionary{{"job_number", "1"}});
    send(0);
    EXPECT_EQ(header("token-id"), "");
}

TEST_F(ApiClientTest, replies_become_objects_or_the_right_error) {
    struct Row {
        const char* name;
        int status;
        const char* type;
        util::Bytes body;
        const char* answer;
    };
    const Row rows[] = {
        {"object", 200, "application/json", R"({"code":500})", "0 {\"code\":500} -"},
        {"created", 201, "text/plain; charset=utf-8", "[1]", "0 [1] -"},
        {"fragment", 200, "text/html", "\"x\"", "0 \"x\" -"},
        {"no content", 204, "", "", "0 null -"},
        {"misspelt type", 200, "application/x-www-form-urlencodem", "{}", "0 {} -"},
        {"rightly spelt type", 200, "application/x-www-form-urlencoded", "{}", "-1 - -1016"},
        {"no type", 200, "", "{}", "-1 - -1016"},
        {"picture", 200, "image/png", "{}", "-1 - -1016"},
        {"page instead of JSON", 200, "text/html", "<html></html>", "-1 - -1016"},
        {"empty", 200, "application/json", "", "-1 - -1016"},
        {"invalid UTF-8", 200, "application/json", "\"\xFF\"", "-1 - -1016"},
        {"server error with JSON", 500, "application/json", R"({"code":200})", "-1 - -1011"},
        {"redirect without a target", 302, "application/json", "{}", "-1 - -1011"},
        {"status wins over type", 404, "image/png", "x", "-1 - -1011"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        answers.clear();
        send(1, Dictionary{});
        on.transport.reply(on.transport.exchanges.size() - 1, row.status, row.type, row.body);
        EXPECT_EQ(answers, std::vector<std::string>{row.answer});
    }
}

TEST_F(ApiClientTest, transport_errors_arrive_as_they_are) {
    for (const UrlError code : {UrlError::TimedOut, UrlError::CannotConnect, UrlError::BadUrl}) {
        answers.clear();
        send(0);
        on.transport.fail(on.transport.exchanges.size() - 1, code);
        EXPECT_EQ(answers, std::vector<std::string>{"-1 - " + std::to_string(static_cast<int>(code))});
    }
}

TEST_F(ApiClientTest, a_delegate_replaces_replies_and_may_keep_them_back) {
    struct Hook final : APIClient::Delegate {
        void handleSuccessRequest(const util::Value& response, std::function<void(const util::Value&)> completion) override {
            if (response == util::Value(1)) return;
            completion("replaced");
            completion("a second time");
        }
    };
    const auto hook = std::make_shared<Hook>();
    on.client->delegate = hook;
    send(0);
    on.transport.replyJson(0, "1");
    EXPECT_TRUE(answers.empty());
    send(0);
    on.transport.replyJson(1, "2");
    EXPECT_EQ(answers, std::vector<std::string>{"0 \"replaced\" -"});
}

TEST_F(ApiClientTest, absent_parameters_travel_as_empty_texts) {
    send(1, Dictionary{{"sn", nullptr}, {"n", 1}});
    EXPECT_EQ(on.last().request.body, R"({"sn":"","n":1})");
}

TEST_F(ApiClientTest, cancelling_ends_all_requests_and_needs_none) {
    on.client->cancelAllRequest();
    send(0);
    send(1, Dictionary{{"a", 1}});
    on.client->cancelAllRequest();
    EXPECT_EQ(answers, (std::vector<std::string>{"-1 - -999", "-1 - -999"}));
}

TEST_F(ApiClientTest, a_reply_after_the_clients_end_finds_nobody) {
    send(0);
    on.client.reset();
    on.transport.replyJson(0, "{}");
    EXPECT_TRUE(answers.empty());
}

TEST_F(ApiClientTest, addresses_are_rewritten_to_the_letter) {
    using Text = std::optional<std::string>;
    EXPECT_EQ(APIClient::queryGet("http://h/p", Dictionary{{"a", 1}}), "http://h/p?a=1");
    EXPECT_EQ(APIClient::queryGet("http://h/p", Dictionary{{"b", "职"}, {"a", "x y%"}}), "http://h/p?b=%E8%81%8C&a=x%20y%25");
    EXPECT_EQ(APIClient::pathGet("http://h/{a}/{b}/{a}", Dictionary{{"a", 1}, {"b", nullptr}}), "http://h/1/(null)/1");
    EXPECT_EQ(APIClient::pathGet("http://h/a b%20", Dictionary{{"zz", "1"}}), "http://h/a%20b%2520");
    for (const auto& rewrite : {APIClient::pathGet, APIClient::queryGet}) {
        EXPECT_EQ(rewrite("http://h/a b", Dictionary{}), "http://h/a b");
        EXPECT_EQ(rewrite("http://h/a b", std::nullopt), "http://h/a b");
        EXPECT_EQ(rewrite(std::nullopt, Dictionary{{"a", 1}}), Text());
    }
}

class DownloadTest : public ApiClientTest {
protected:
    void download(const std::string& url) {
        on.client->downloadURL(
            url, [this](const platform::HttpProgress& progress) { answers.push_back("progress " + std::to_string(progress.completed)); },
            [this](const std::string& file) { answers.push_back("file " + file); },
            [this](const util::Error& error) { answers.push_back("failure " + std::to_string(error.code)); });
    }
};

TEST_F(DownloadTest, lands_in_the_caches_without_token_or_json) {
    on.user.user_loginSuccessWithDic(Dictionary{{"job_number", "1"}, {"token", "secret"}});
    send(0);
    download("http://h/certs/x%20y.p12");
    on.transport.reply(1, 200, "application/x-pkcs12", "bytes");
    EXPECT_EQ(answers, (std::vector<std::string>{"progress 5", "file file:///home/test/Caches/x y.p12"}));
    EXPECT_TRUE(on.last().request.headers.fields().empty());
    EXPECT_EQ(on.last().session, 1U);
    for (const auto& session : on.transport.sessions) EXPECT_EQ(session.resultQueue, on.mainLoop);
}

TEST_F(DownloadTest, one_that_is_under_way_ends_with_the_client) {
    download("http://h/x");
    const std::weak_ptr<test::ScriptedTransport::Exchange> running = on.transport.exchanges[0];
    on.client.reset();
    EXPECT_TRUE(answers.empty());
    EXPECT_TRUE(running.lock()->completed);
}

TEST_F(DownloadTest, an_error_is_the_failure_and_nothing_else) {
    download("http://h/x");
    on.transport.fail(0, UrlError::ConnectionLost);
    download("http://h/x");
    on.transport.reply(1, 404, "text/html", "<html>");
    EXPECT_EQ(answers, (std::vector<std::string>{"failure -1005", "failure -1011"}));
}

TEST_F(DownloadTest, absent_callbacks_are_not_called) {
    on.client->downloadURL("http://h/x", nullptr, nullptr, nullptr);
    on.client->downloadURL("http://h/x", nullptr, nullptr, nullptr);
    on.transport.reply(0, 200, "text/plain", "x");
    on.transport.fail(1, UrlError::TimedOut);
}

TEST_F(ApiClientTest, reachability_is_told_as_yes_and_no_and_unknown_as_nothing) {
    using platform::ReachabilityStatus;
    std::vector<bool> told;
    on.client->networkReachableWithBlock([&](bool reachable) { told.push_back(reachable); });
    EXPECT_EQ(on.reachability.starts, 1);
    for (const auto status :
         {ReachabilityStatus::Unknown, ReachabilityStatus::Wifi, ReachabilityStatus::NotReachable, ReachabilityStatus::WideAreaNetwork}) {
        on.reachability.become(status);
    }
    EXPECT_EQ(told, (std::vector<bool>{true, false, true}));
}

}  // namespace
}  // namespace halvane::service
