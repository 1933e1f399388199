// The recipes of docs/request-layer.md, word for word: `documentation_shows_what_runs` compares them.
#include "request/LiveRequests.h"
#include "support/TemporaryDirectory.h"
#include "support/TlsLoopback.h"

#include <algorithm>
#include <atomic>
#include <fstream>
#include <iterator>

namespace halvane::request {
namespace {

using test::LoopbackServer;
using test::okReply;

std::string contentsOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::string answerTo(const std::string& request) {
    const auto json = [](const char* body) { return okReply(body, "Content-Type: application/json\r\n"); };
    if (request.find(" /api/login ") != std::string::npos) return json(R"({"code":200,"name":"chen.xiao","token":"t"})");
    if (request.find(" /api/search?page=2&tags%5B%5D=new&version=3 ") != std::string::npos) {
        return okReply("<hits><hit>third</hit></hits>", "Content-Type: text/xml\r\n");
    }
    if (request.find(" /files/report.pdf ") != std::string::npos) return okReply("%PDF");
    if (request.find(" /api/report ") != std::string::npos) return "HTTP/1.1 503 Later\r\nContent-Length: 0\r\n\r\n";
    return json(R"({"code":200})");
}

/// Nobody asks a name server for "h.example": it leads to the servers of the test.
class Recipes : public LiveRequests {
protected:
    Recipes() {
        std::ofstream(directory / "report.pdf") << "%PDF";
        identity = test::TestAuthority::pkcs12(authority.issueClient("chen.xiao"), "pass phrase");
        certificate = leaf.der;
        center.setupConfig([this](XMConfig& config) { config.generalServer = server.url("/api"); });
        center.setRequestProcessBlock([this](XMRequest& request) {
            const std::string elsewhere = "https://h.example";
            if (!request.url || !request.url->starts_with(elsewhere)) return;
            const bool isPinned = request.url->size() == elsewhere.size() + 1;
            request.url = (isPinned ? secure.url("") : server.url("")) + request.url->substr(elsewhere.size());
        });
    }
    /// The events of a recipe, sorted: results come from several threads.
    std::vector<std::string> heard(std::size_t count) {
        EXPECT_TRUE(log.await(count));
        auto events = log.events();
        std::ranges::sort(events);
        return events;
    }
    using Events = std::vector<std::string>;

    void found(const std::optional<std::string>& text) { log.add("found " + text.value_or("nothing")); }
    void failed(const util::Error& error) { log.add("failed " + std::to_string(error.code)); }
    void count(std::size_t results) { log.add("results " + std::to_string(results)); }
    void moved(std::uint64_t bytes) { uploaded = bytes; }
    void cancelled(bool anything) { log.add(anything ? "cancelled" : "nothing to cancel"); }
    XMFinishedBlock finished = [this](const Response&, const Failure& failure) { log.add(failure ? "failure" : "success"); };

    test::EventLog log;
    std::atomic<std::uint64_t> uploaded{0};
    const test::TemporaryDirectory place;
    const std::filesystem::path directory = place.path();
    const test::TestAuthority authority;
    const test::TestIdentity leaf = authority.issueServer("IP:127.0.0.1");
    std::string identity;
    std::string certificate;
    test::TlsLoopback tls{
        {.identity = leaf, .client = test::TlsLoopback::Client::Required, .clientAuthority = authority.root().certificate}};
    LoopbackServer server{LoopbackServer::answering(answerTo)};
    LoopbackServer secure{LoopbackServer::answering(answerTo), tls.maker()};
    XMCenter& center = *LiveRequests::center;
    XMEngine& engine = *LiveRequests::engine;
};

TEST_F(Recipes, settings_for_all_requests) {
    // recipe 1
    center.setupConfig([](XMConfig& config) {
        config.generalServer = "https://h.example/api";  // its path counts as a directory
        config.generalHeaders = {{"token-id", "t"}};
        config.generalParameters = {{"version", 3}};
        config.consoleLog = true;  // secrets are covered
    });
    // that is all
    EXPECT_EQ(center.settings()->generalServer, "https://h.example/api");
    EXPECT_EQ(center.settings()->generalHeaders.fields().size(), 1U);
}

TEST_F(Recipes, json_there_and_back) {
    // recipe 2
    center.sendRequest(
        [](XMRequest& request) {
            request.api = "login";  // POST https://h.example/api/login
            request.requestSerializerType = XMRequestSerializerJSON;
            request.parameters = util::Dictionary{{"name", "chen.xiao"}, {"roles", util::Value::List{"admin"}}};
        },
        {.onSuccess = [&](const Response& reply) { found(util::textOf(util::member(reply->value(), "name"))); },
         .onFailure = [&](const Failure& error) { failed(*error); }});
    // that is all
    EXPECT_EQ(heard(1), Events{"found chen.xiao"});
    EXPECT_NE(server.requests().at(0).find(R"({"name":"chen.xiao","roles":["admin"]})"), std::string::npos);
}

TEST_F(Recipes, a_query) {
    center.setGeneralParameterValue(3, "version");
    // recipe 3
    center.sendRequest(
        [](XMRequest& request) {
            request.api = "search";  // GET …/search?page=2&tags%5B%5D=new
            request.httpMethod = XMHTTPMethodGET;
            request.parameters = util::Dictionary{{"page", 2}, {"tags", util::Value::List{"new"}}};
            request.responseSerializerType = XMResponseSerializerXML;
        },
        {.onSuccess = [&](const Response& reply) { found(reply->xml()->child("hit")->text); }});
    // that is all
    EXPECT_EQ(heard(1), Events{"found third"});
}

TEST_F(Recipes, an_upload_with_progress) {
    // recipe 4
    center.sendRequest(
        [&](XMRequest& request) {
            request.api = "documents";
            request.requestType = XMRequestUpload;  // multipart, streamed
            request.addFormDataWithName("title", util::Bytes("Report"));
            request.addFormDataWithName("file", directory / "report.pdf");  // name and type are the file's
        },
        {.onProgress = [&](const auto& progress) { moved(progress.completed); }, .onFinished = finished});
    // that is all
    EXPECT_EQ(heard(1), Events{"success"});
    EXPECT_GT(uploaded, 200U);
    EXPECT_NE(server.requests().at(0).find("filename=\"report.pdf\"\r\nContent-Type: application/pdf\r\n\r\n%PDF\r\n"), std::string::npos);
}

TEST_F(Recipes, a_download) {
    // recipe 5
    center.sendRequest(
        [&](XMRequest& request) {
            request.url = "https://h.example/files/report.pdf";
            request.requestType = XMRequestDownload;
            request.downloadSavePath = directory;  // there it becomes report.pdf, once it is whole
        },
        {.onSuccess = [&](const Response& reply) { found(reply->file()->filename().string()); }});
    // that is all
    EXPECT_EQ(heard(1), Events{"found report.pdf"});
    EXPECT_EQ(contentsOf(directory / "report.pdf"), "%PDF");
}

TEST_F(Recipes, try_again_and_give_up) {
    // recipe 6
    const auto identifier = center.sendRequest(
        [](XMRequest& request) {
            request.api = "report";
            request.retryCount = 2;        // two seconds apart
            request.timeoutInterval = 15;  // seconds of silence
        },
        {.onFinished = finished});
    center.cancelRequest(identifier, [&](const XMCenter::Running& what) { cancelled(what.index() != 0); });
    // that is all
    EXPECT_TRUE(test::eventually([&] {
        background->advance(std::chrono::seconds(2));
        return log.events().size() == 2;
    }));
    const auto events = heard(2);
    EXPECT_EQ(events.back(), "failure");
}

TEST_F(Recipes, a_business_error_is_a_failure) {
    // recipe 7
    center.setResponseProcessBlock([](XMRequest&, const Response& reply, Failure& error) -> Response {
        const auto code = util::integerOf(util::member(reply ? reply->value() : nullptr, "code"));
        if (code != 200) error = util::Error{"company", static_cast<int>(code), "The server refused.", std::nullopt};
        return std::nullopt;  // the reply as it is
    });
    // that is all
    center.sendRequest([](XMRequest& request) { request.api = "fine"; }, {.onFinished = finished});
    center.sendRequest([](XMRequest& request) { request.api = "report"; }, {.onFailure = [&](const Failure& error) { failed(*error); }});
    EXPECT_EQ(heard(2), (Events{"failed -1011", "success"}));
}

TEST_F(Recipes, several_at_once) {
    // recipe 8
    center.sendBatchRequest(
        [](XMBatchRequest& batch) {
            for (const char* api : {"a", "b", "c"}) {
                batch.requestArray.push_back(XMRequest::request());
                batch.requestArray.back()->api = api;
            }
        },
        {.onSuccess = [&](const XMResults& all) { count(all.size()); },
         .onFailure = [&](const XMResults& some) { count(some.size()); }});  // who succeeded is in it
    // that is all
    EXPECT_EQ(heard(1), Events{"results 3"});
}

TEST_F(Recipes, one_after_the_other) {
    // recipe 9
    center.sendChainRequest(
        [](XMChainRequest& chain) {
            chain.onFirst([](XMRequest& login) { login.api = "login"; })
                .onNext([](XMRequest& profile, const Response& session, bool& send) {
                    const auto token = util::textOf(util::member(session->value(), "token"));
                    send = token.has_value();  // false ends the chain as a failure
                    profile.api = "profile";
                    profile.headers.set("token-id", token.value_or(""));
                });
        },
        {.onSuccess = [&](const XMResults& both) { count(both.size()); }});
    // that is all
    EXPECT_EQ(heard(1), Events{"results 2"});
    EXPECT_NE(server.requests().at(1).find("token-id: t\r\n"), std::string::npos);
}

TEST_F(Recipes, pinned_with_a_certificate_of_our_own) {
    engine.addSSLPinningURL(secure.url());  // the address of h.example, in here
    // recipe 10
    engine.addSSLPinningURL("https://h.example");  // every host of that domain
    engine.addSSLPinningCert(certificate);         // DER: theirs, or their authority's
    engine.addTwowayAuthenticationPKCS12(identity, "pass phrase");
    center.sendRequest([](XMRequest& request) { request.url = "https://h.example/"; }, {.onFinished = finished});
    // that is all
    EXPECT_EQ(heard(1), Events{"success"});
    EXPECT_EQ(tls.clients(), std::vector<std::string>{"chen.xiao"});
}

/// Without white space: a recipe is laid out for its page.
std::string squeezed(std::string text) {
    std::erase_if(text, [](unsigned char c) { return c == ' ' || c == '\n'; });
    return text;
}

TEST(RecipesDocument, documentation_shows_what_runs) {
    const std::string document = contentsOf(HALVANE_SOURCE_DIR "/docs/request-layer.md");
    const std::string source = squeezed(contentsOf(HALVANE_SOURCE_DIR "/tests/request/recipes_test.cpp"));
    int recipes = 0;
    const std::string fence = "```cpp\n";
    for (auto at = document.find(fence); at != std::string::npos; at = document.find(fence, at + 1)) {
        const auto begin = at + fence.size();
        const std::string recipe = document.substr(begin, document.find("```", begin) - begin);
        EXPECT_NE(source.find(squeezed(recipe)), std::string::npos) << recipe;
        ++recipes;
    }
    EXPECT_EQ(recipes, 10);
}

}  // namespace
}  // namespace halvane::request
