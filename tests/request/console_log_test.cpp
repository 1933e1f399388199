#include "request/RequestStory.h"

namespace halvane::request {
namespace {

using util::Dictionary;
using util::Value;

class ConsoleLogTest : public RequestStory {
protected:
    void SetUp() override {
        center->setupConfig([](XMConfig& config) { config.consoleLog = true; });
    }
};

TEST_F(ConsoleLogTest, banners_stand_as_support_knows_them) {
    center->sendRequest([](XMRequest& request) {
        request.url = "http://h/p";
        request.parameters = Dictionary{{"a", 1}};
        request.headers = {{"X", "1"}};
    });
    transport->replyJson(0, "{\"b\":2}");
    center->sendRequest([](XMRequest& request) {
        request.url = "http://h/f";
        request.requestType = XMRequestDownload;
        request.downloadSavePath = "/x/f";
    });
    transport->reply(1, 200, "", "");
    center->sendRequest([](XMRequest& request) { request.url = "http://h/q"; });
    transport->fail(2, util::UrlError::TimedOut, "too long");
    const std::string line = "==========================================\n";
    const Events expected{
        "\n============ [XMRequest Info] ============\nrequest url: http://h/p \nrequest headers: \n{\"X\":\"1\"} \nrequest parameters: "
        "\n{\"a\":1} \n" +
            line,
        "\n============ [XMResponse Data] ===========\nrequest url: http://h/p \nresponse data: \n{\"b\":2}\n" + line,
        "\n============ [XMRequest Info] ============\nrequest download url: http://h/f\nrequest save path: /x/f \nrequest headers: "
        "\n(null) \nrequest parameters: \n(null) \n" +
            line,
        "\n============ [XMResponse Data] ===========\nrequest download url: http://h/f\nresponse data: /x/f\n" + line,
        "\n============ [XMRequest Info] ============\nrequest url: http://h/q \nrequest headers: \n(null) \nrequest parameters: \n(null) "
        "\n" +
            line,
        "\n=========== [XMResponse Error] ===========\nrequest url: http://h/q \nerror info: \nhalvane.url -1001: too long\n" + line};
    EXPECT_EQ(log->lines(), expected);
}

TEST_F(ConsoleLogTest, replies_of_every_kind_are_shown) {
    struct Row {
        XMResponseSerializerType type;
        const char* contentType;
        std::string body;
        const char* shown;
    };
    const Row rows[] = {
        {XMResponseSerializerRAW, "", "caf\xC3\xA9", "caf\xC3\xA9"},
        {XMResponseSerializerRAW, "", "\xFF\xFE", "(null)"},
        {XMResponseSerializerJSON, "application/json", "", "(null)"},
        {XMResponseSerializerXML, "text/xml", "<r><a x='1'>t</a></r>", R"({"r":[{"a":[{"x":"1"},"t"]}]})"},
        {XMResponseSerializerPlist, "application/x-plist", "<plist><integer>3</integer></plist>", "3"},
    };
    for (const Row& row : rows) {
        center->sendRequest([&](XMRequest& request) {
            request.url = "http://h/p";
            request.responseSerializerType = row.type;
        });
        transport->reply(sentCount() - 1, 200, row.contentType, row.body);
        EXPECT_NE(log->lines().back().find("response data: \n" + std::string(row.shown) + "\n="), std::string::npos) << log->lines().back();
    }
}

TEST_F(ConsoleLogTest, no_secret_reaches_it) {
    const std::string secret = "s3cr3t";
    center->setupConfig([&](XMConfig& config) {
        config.consoleLog = true;
        config.generalHeaders = {{"Authorization", secret}, {"token-id", secret}, {"Cookie", secret}};
    });
    const std::string json = R"({"user":{"password":"s3cr3t"},"token":"s3cr3t"})";
    for (const auto type : {XMResponseSerializerRAW, XMResponseSerializerJSON, XMResponseSerializerXML}) {
        center->sendRequest([&](XMRequest& request) {
            request.url = "http://name:" + secret + "@h/p?x=1&access_token=" + secret + "&pass%77ord=" + secret + "#" + secret;
            request.parameters = Dictionary{{"password", secret}, {"rows", Value::List{Dictionary{{"Token", secret}}}}};
            request.responseSerializerType = type;
        });
        const bool isXml = type == XMResponseSerializerXML;
        transport->reply(sentCount() - 1, 200, isXml ? "text/xml" : "application/json",
                         isXml ? "<r password='s3cr3t'><token>s3cr3t</token><token><v>s3cr3t</v></token></r>" : json);
        center->sendRequest([&](XMRequest& request) { request.url = "http://h/?password=" + secret + "&a=1#" + secret; });
        transport->reply(sentCount() - 1, 500, "application/json", json);
    }
    for (const char* raw : {"a=1&password=s3cr3t&b=2", "<r><token>s3cr3t</token></r>"}) {
        center->sendRequest(
            [](XMRequest& request) { request.url = "http://h/", request.responseSerializerType = XMResponseSerializerRAW; });
        transport->reply(sentCount() - 1, 200, "", raw);
    }
    EXPECT_EQ(log->lines().size(), 16U);
    EXPECT_FALSE(log->contains(secret)) << log->lines()[0] << log->lines()[1];
    EXPECT_TRUE(log->contains("http://h/p?x=1&access_token=<redacted>&pass%77ord=<redacted>"));
}

}  // namespace
}  // namespace halvane::request
