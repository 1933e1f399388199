#include "service/HVRequstHelper.h"

#include "support/GoldenExchange.h"
#include "support/ScriptedClient.h"
#include "util/Json.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>

namespace halvane::service {
namespace {

using util::Dictionary;

class RequestHelperTest : public testing::Test {
protected:
    RequestHelperTest() {
        success = [this](const util::Value& value) { answers.push_back("success " + util::Json::encode(value)); };
        failure = [this](const std::optional<util::Error>& error) {
            answers.push_back("failure " + (error ? std::to_string(error->code) : "none"));
        };
        downloaded = [this](const std::string& url) { answers.push_back("downloaded " + url); };
    }

    /// What the program calls for each recorded operation, with the parameters of `recorded`.
    void call(const std::string& operation, const test::GoldenExchange& recorded) {
        const Dictionary params = recorded.request.body ? *util::Json::decode(*recorded.request.body)->dictionary() : Dictionary();
        const std::string url = values.at("BASE") + test::filled(recorded.request.target, values);
        const std::map<std::string, std::function<void()>> calls{
            {"login", [&] { on.requests.loginWithParams(params, success, failure); }},
            {"update_office_address", [&] { on.requests.updateOfficeAddressWithUserID("1001", "shanghai", success, failure); }},
            {"contact_list", [&] { on.requests.getContactListUrlWithCurrentPage("0", "1", success, failure); }},
            {"create_ad_cert",
             [&] {
                 on.requests.getP12CertificateInfoWithUserName(util::textOf(params.find("username")).value_or(""),
                                                               util::textOf(params.find("password")).value_or(""), success, failure);
             }},
            {"download_p12", [&] { on.requests.downloadP12CertificateWithUrl(url, nullptr, downloaded, failure); }},
            {"download_file", [&] { on.requests.downloadFileWithUrl(url, nullptr, downloaded, failure); }},
            {"equipment_status", [&] { on.requests.reportLockOrReportTheLossWithParams(params, success, failure); }},
            {"check_version_update", [&] { on.requests.checkVersionUpdateInfoWithParams(params, success, failure); }},
            {"uninstall_apply", [&] { on.requests.applyUnInstallCodeWithParams(params, success, failure); }},
            {"uninstall_sure", [&] { on.requests.verifyUnInstallWithParams(params, success, failure); }},
        };
        ASSERT_TRUE(calls.contains(operation)) << "a recorded operation that the client does not know";
        calls.at(operation)();
    }

    void expectSent(const test::GoldenExchange& recorded) {
        const auto& sent = on.last().request;
        EXPECT_EQ(sent.method + " " + sent.url,
                  recorded.request.method + " " + values.at("BASE") + test::filled(recorded.request.target, values));
        for (const auto& [name, value] : recorded.request.headers) {
            const auto* header = sent.headers.find(name);
            ASSERT_NE(header, nullptr) << name;
            EXPECT_EQ(*header, test::filled(value, values)) << name;
        }
        for (const auto& name : recorded.request.absentHeaders) EXPECT_EQ(sent.headers.find(name), nullptr) << name;
        // The recorded body went through the client's own reader, so it is the order and the letters that count here.
        EXPECT_EQ(sent.body, recorded.request.body.value_or(""));
    }

    test::GoldenValues values{
        {"BASE", test::ScriptedClient::kBase}, {"TOKEN", "t-1"}, {"DOWNLOAD", "d0"}, {"CERT_PASSWORD", "pw"}, {"PKCS12", "p12"},
        {"UNINSTALL_CODE", "123456"}};
    test::ScriptedClient on;
    HVRequstHelper::Success success;
    HVRequstHelper::Failure failure;
    HVRequstHelper::Downloaded downloaded;
    std::vector<std::string> answers;
};

TEST_F(RequestHelperTest, every_operation_sends_the_recorded_bytes_and_reads_the_recorded_reply) {
    for (const auto& operation : test::goldenOperations()) {
        for (auto recorded : test::goldenExchanges(operation)) {
            SCOPED_TRACE(operation + ": " + recorded.name);
            if (recorded.request.body) recorded.request.body = test::filled(*recorded.request.body, values);
            std::string token;
            for (const auto& [name, value] : recorded.request.headers) {
                if (name == "token-id") token = test::filled(value, values);
            }
            on.user.user_loginSuccessWithDic(Dictionary{{"job_number", "1"}, {"token", token}});
            answers.clear();
            call(operation, recorded);
            expectSent(recorded);

            const std::string body = test::filled(recorded.reply.body, values);
            platform::HttpResponse reply{recorded.reply.status, on.last().request.url, {}};
            for (const auto& [name, value] : recorded.reply.headers) reply.headers.set(name, value);
            on.transport.reply(on.transport.exchanges.size() - 1, reply, body);
            ASSERT_EQ(answers.size(), 1U);
            if (operation.starts_with("download")) {
                EXPECT_EQ(answers[0], "downloaded file:///home/test/Caches/chen.xiao.pfx");
            } else {
                EXPECT_EQ(answers[0], "success " + body);
            }
        }
    }
}

TEST_F(RequestHelperTest, values_stand_in_addresses_as_they_are) {
    on.requests.updateOfficeAddressWithUserID("7 职", std::nullopt, nullptr, nullptr);
    EXPECT_EQ(on.last().request.url, "http://company.test/api/client/user/work_address/7 职?work_address=(null)");
}

TEST_F(RequestHelperTest, exactly_one_callback_answers_and_none_is_needed) {
    on.requests.loginWithParams({}, success, failure);
    on.requests.loginWithParams({}, nullptr, nullptr);
    on.requests.loginWithParams({}, nullptr, nullptr);
    on.requests.downloadFileWithUrl("http://h/f", nullptr, nullptr, nullptr);
    on.transport.fail(0, util::UrlError::TimedOut);
    on.transport.replyJson(1, "{}");
    on.transport.fail(2, util::UrlError::TimedOut);
    on.transport.fail(3, util::UrlError::TimedOut);
    EXPECT_EQ(answers, std::vector<std::string>{"failure -1001"});
}

}  // namespace
}  // namespace halvane::service
