#include "request/RequestStory.h"

#include <limits>
#include <map>

namespace halvane::request {
namespace {

using util::Dictionary;
using util::UrlError;

class EngineTest : public RequestStory {
protected:
    void send(const std::shared_ptr<XMRequest>& request) {
        engine->sendRequest(request, [this](const Response& response, const Failure& failure) {
            events.push_back(shown(response) + " " + shown(failure));
        });
    }
    std::string uploaded(std::size_t index) {
        std::string body(100'000, '\0');
        const auto stream = sent(index).request.bodyStream;
        const auto count = stream ? stream->read(body.data(), body.size()) : 0;
        body.resize(count.value_or(0));
        return body;
    }
};

TEST_F(EngineTest, methods_have_their_names_and_uploads_and_downloads_one_each) {
    const char* const names[] = {"GET", "POST", "HEAD", "DELETE", "PUT", "PATCH"};
    for (int method = 0; method < 6; ++method) {
        for (const auto type : {XMRequestNormal, XMRequestUpload, XMRequestDownload}) {
            auto request = requestTo("http://h/p");
            request->httpMethod = static_cast<XMHTTPMethod>(method);
            request->requestType = type;
            request->parameters = Dictionary{{"a", 1}};
            request->headers = {{"X-Own", "1"}, {"User-Agent", "own"}};
            request->timeoutInterval = 1.5;
            send(request);
            const auto& made = transport->exchanges.back()->request;
            EXPECT_EQ(made.method, type == XMRequestNormal ? names[method] : type == XMRequestUpload ? "POST" : "GET");
            EXPECT_EQ(transport->exchanges.back()->isDownload, type == XMRequestDownload);
            EXPECT_EQ(made.timeout, std::chrono::milliseconds(1500));
            EXPECT_EQ(*made.headers.find("user-agent") + *made.headers.find("x-own"), "own1");
            if (type == XMRequestDownload) {
                EXPECT_EQ(made.url + made.body, "http://h/p") << "parameters are not sent";
            }
        }
    }
    for (const double odd : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN()}) {
        auto request = requestTo("http://h/p");
        request->timeoutInterval = odd;
        send(request);
        EXPECT_EQ(transport->exchanges.back()->request.timeout, std::chrono::seconds(60));
    }
}

TEST_F(EngineTest, pinned_domains_have_a_session_of_their_own) {
    for (const char* url : {"http://plain.example/x", "https://www.deep.pinned.example/x", "https://a.pinned.example",
                            "https://localhost:1/", "ftp://other.example", "https://"}) {
        engine->addSSLPinningURL(url);
    }
    struct Row {
        const char* url;
        char prefix;
    };
    const Row rows[] = {{"http://plain.example/", '+'},
                        {"https://plain.example/", '+'},
                        {"https://pinned.example/", '-'},
                        {"https://any.pinned.example/", '-'},
                        {"https://xpinned.example/", '+'},
                        {"http://pinned.example/", '+'},
                        {"HTTPS://PINNED.example/", '-'},
                        {"https://localhost/", '-'},
                        {"https://example/", '+'},
                        {"https://user@pinned.example/", '-'},
                        {"https://pinned.example.evil.org/", '+'}};
    std::map<char, int> numbers;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.url);
        auto request = requestTo(row.url);
        send(request);
        EXPECT_EQ(request->identifier(), row.prefix + std::to_string(++numbers[row.prefix]));
        EXPECT_EQ(std::static_pointer_cast<XMRequest>(transport->exchanges.back()->context), request);
    }
    ASSERT_EQ(transport->sessions.size(), 2U);
    for (const auto& session : transport->sessions) {
        EXPECT_EQ(session.maximumConcurrentTasks, 5);
        EXPECT_EQ(session.resultQueue, completion);
    }
}

TEST_F(EngineTest, identifiers_find_and_cancel_the_task_of_their_session) {
    engine->addSSLPinningURL("https://pinned.example");
    EXPECT_EQ(engine->getRequestByIdentifier("+1"), nullptr);
    EXPECT_TRUE(transport->sessions.empty()) << "looking makes no session";
    auto ordinary = requestTo("https://plain.example/");
    auto pinned = requestTo("https://pinned.example/");
    send(ordinary);
    send(pinned);
    EXPECT_EQ(engine->getRequestByIdentifier("+1"), ordinary);
    EXPECT_EQ(engine->getRequestByIdentifier("-1"), pinned);
    for (const char* identifier : {"", "+2", "-2", "1", "BC1", "+", "+01"}) {
        EXPECT_EQ(engine->cancelRequestByIdentifier(identifier), nullptr) << identifier;
    }
    EXPECT_TRUE(events.empty());
    EXPECT_EQ(engine->cancelRequestByIdentifier("-1"), pinned);
    EXPECT_EQ(events, Events{"- -999"});
    EXPECT_EQ(engine->getRequestByIdentifier("-1"), nullptr);
    EXPECT_EQ(engine->getRequestByIdentifier("+1"), ordinary);
}

TEST_F(EngineTest, replies_are_read_by_the_requests_type_and_decoding_errors_come_first) {
    struct Row {
        const char* name;
        int type;
        int status;
        const char* contentType;
        const char* body;
        const char* expected;
    };
    const Row rows[] = {
        {"raw", 0, 200, "text/html", "x", "bytes x -"},
        {"raw with a status", 0, 500, "text/html", "x", "bytes x -1011"},
        {"JSON", 1, 200, "application/json", "[1]", "[1] -"},
        {"JSON that is none", 1, 200, "application/json", "[1", "- -1016"},
        {"JSON of 10,000 levels", 1, 200, "application/json", nullptr, "- -1016"},
        {"empty JSON", 1, 200, "application/json", "", "- -"},
        {"JSON with a status", 1, 500, "application/json", "[1]", "- -1011"},
        {"property list", 2, 200, "application/x-plist", "<plist><true/></plist>", "true -"},
        {"XML", 3, 200, "text/xml", "<a/>", "<a> -"},
        {"no such type", 4, 200, "application/json", "[1]", "- -"},
        {"no such type, with a status", -1, 404, "application/json", "[1]", "- -1011"},
    };
    const std::string deep = std::string(10'000, '[') + std::string(10'000, ']');
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        auto request = requestTo("http://h/p");
        request->responseSerializerType = static_cast<XMResponseSerializerType>(row.type);
        send(request);
        transport->reply(sentCount() - 1, row.status, row.contentType, row.body == nullptr ? deep : row.body);
        EXPECT_EQ(heard(), Events{row.expected});
    }
    for (int type = 0; type < 5; ++type) {
        auto request = requestTo("http://h/p");
        request->responseSerializerType = static_cast<XMResponseSerializerType>(type);
        send(request);
        transport->fail(sentCount() - 1, UrlError::ConnectionLost);
        EXPECT_EQ(heard(), Events{"- -1005"}) << type;
    }
}

TEST_F(EngineTest, an_upload_carries_its_parts_up_to_the_first_file_that_is_not_there) {
    transport->files["/x/a.txt"] = "contents of a";
    auto request = requestTo("http://h/u");
    request->requestType = XMRequestUpload;
    request->httpMethod = XMHTTPMethodGET;
    request->parameters = Dictionary{{"p", "v"}};
    request->addFormDataWithName("bytes", util::Bytes("field"));
    request->addFormDataWithName("named", "n.bin", "application/x-n", util::Bytes("file of bytes"));
    request->uploadFormDatas.push_back({.name = "half", .fileName = "no type", .fileData = std::make_shared<const util::Bytes>("half")});
    request->uploadFormDatas.push_back({.name = "empty"});
    request->addFormDataWithName("a", std::filesystem::path("/x/a.txt"));
    request->addFormDataWithName("b", "b.dat", "application/x-b", std::filesystem::path("/x/a.txt"));
    request->addFormDataWithName("gone", std::filesystem::path("/x/gone"));
    request->addFormDataWithName("after", util::Bytes("left out"));
    send(request);
    EXPECT_EQ(heard(), Events()) << "no error";
    const std::string body = uploaded(0);
    std::string names;
    for (auto at = body.find("form-data; "); at != std::string::npos; at = body.find("form-data; ", at + 1)) {
        names += body.substr(at + 11, body.find('\r', at) - at - 11) + "|";
    }
    EXPECT_EQ(names,
              "name=\"p\"|name=\"bytes\"|name=\"named\"; filename=\"n.bin\"|name=\"half\"|name=\"a\"; filename=\"a.txt\"|"
              "name=\"b\"; filename=\"b.dat\"|");
    for (const char* part : {"\r\nfield\r\n", "application/x-n\r\n\r\nfile of bytes", "text/plain\r\n\r\ncontents of a",
                             "application/x-b\r\n\r\ncontents of a"}) {
        EXPECT_NE(body.find(part), std::string::npos) << part;
    }
}

TEST_F(EngineTest, downloads_go_into_a_directory_or_to_the_file) {
    transport->directories.insert("/downloads");
    struct Row {
        const char* name;
        const char* url;
        std::optional<std::filesystem::path> path;
        const char* destination;
    };
    const Row rows[] = {
        {"directory", "http://h/a/b.zip?x=/y", "/downloads", "/downloads/b.zip"},
        {"file", "http://h/a/b.zip", "/elsewhere/c", "/elsewhere/c"},
        {"escaped name", "http://h/a/b%20c", "/downloads", "/downloads/b c"},
        {"name that leads out", "http://h/a/..%2F..%2Fetc", "/downloads", "/downloads/etc"},
        {"no name", "http://h", "/downloads", "/downloads/"},
        {"no path", "http://h/b.zip", std::nullopt, ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        auto request = requestTo(row.url);
        request->requestType = XMRequestDownload;
        request->downloadSavePath = row.path;
        send(request);
        transport->directories.insert("/elsewhere/c");  // too late: the destination stands
        EXPECT_EQ(sent(sentCount() - 1).download.destination({}), row.destination);
        transport->directories.erase("/elsewhere/c");
        transport->reply(sentCount() - 1, 200, "text/plain", "not decoded");
        EXPECT_EQ(heard(), Events{std::string("file ") + row.destination + " -"});
    }
    auto request = requestTo("http://h/p");
    request->requestType = XMRequestDownload;
    request->downloadSavePath = "/downloads";
    send(request);
    transport->reply(sentCount() - 1, 404, "text/plain", "");
    EXPECT_EQ(heard(), Events{"- -1011"});
}

}  // namespace
}  // namespace halvane::request
