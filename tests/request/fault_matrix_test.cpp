#include "request/LiveRequests.h"
#include "support/Eventually.h"
#include "support/Gate.h"
#include "support/TemporaryDirectory.h"

#include <sys/resource.h>

#include <atomic>
#include <cstdio>
#include <fstream>

namespace halvane::request {
namespace {

using namespace std::chrono_literals;
using test::LoopbackConnection;
using test::LoopbackServer;
using test::okReply;
using util::UrlError;

/// Gzip of `size` zeros, a thousandth as long: one literal, then the longest match again and again.
std::string bomb(std::size_t size) {
    std::string bytes("\x1f\x8b\x08\0\0\0\0\0\0\3", 10);
    unsigned buffer = 0;
    int held = 0;
    const auto put = [&](unsigned bits, int count) {
        for (int i = 0; i < count; ++i) {
            buffer |= ((bits >> i) & 1U) << held;
            if (++held < 8) continue;
            bytes += static_cast<char>(std::exchange(buffer, 0));
            held = 0;
        }
    };
    put(0b011, 3);                                                                  // the last block, with the fixed codes
    put(0b00001100, 8);                                                             // a zero
    for (std::size_t made = 1; made < size; made += 258) put(0b0000010100011, 13);  // 258 bytes from 1 back
    put(0, 7 + 7);                                                                  // the end, and the rest of a byte
    return bytes;
}

class FaultMatrix : public LiveRequests {
protected:
    static void print(const char* name, const Ended& ended) {
        std::printf("  %-50s %s\n", name,
                    ended.failure ? (std::to_string(ended.failure->code) + " " + ended.failure->description).c_str() : "succeeds");
    }
    void check(const char* name, const Ended& ended, UrlError expected, const std::string& body = "") {
        SCOPED_TRACE(name);
        print(name, ended);
        EXPECT_EQ(ended.code(), static_cast<int>(expected));
        EXPECT_EQ(ended.failure ? "" : ended.body(), body);
    }

    const test::TemporaryDirectory directory;
};

TEST_F(FaultMatrix, connections_and_replies_that_go_wrong) {
    constexpr auto kFine = UrlError{0};
    struct Row {
        const char* name;
        LoopbackServer::Script script;
        UrlError expected;
        const char* body = "";
        double timeout = 20;
    };
    const auto answering = [](std::string reply) {
        return [reply = std::move(reply)](LoopbackConnection& connection) {
            if (!connection.readRequest().empty()) connection.send(reply);
        };
    };
    const auto resetting = [](std::string reply) {
        return [reply = std::move(reply)](LoopbackConnection& connection) {
            connection.readRequest();
            connection.send(reply);
            connection.reset();
        };
    };
    std::string manyHeaders = "HTTP/1.1 200 OK\r\n";
    for (int i = 0; i < 100'000; ++i) manyHeaders += "X-" + std::to_string(i) + ": 1\r\n";
    std::string thousands = "HTTP/1.1 200 OK\r\n";
    for (int i = 0; i < 2000; ++i) thousands += "X-" + std::to_string(i) + ": 1\r\n";
    const std::string chunked = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
    const Row rows[] = {
        {"reset before the body", resetting(""), UrlError::ConnectionLost},
        {"reset in the middle of the body", resetting("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nabc"), UrlError::ConnectionLost},
        {"body shorter than announced", answering("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nabc"), UrlError::ConnectionLost},
        {"body longer than announced", answering("HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\nabcdef"), kFine, "abc"},
        {"trickle slower than hoped",
         [](LoopbackConnection& connection) {
             connection.readRequest();
             connection.trickle(okReply("slow"), 30ms);
         },
         kFine, "slow", 0.8},
        {"silence before the reply", [](LoopbackConnection& connection) { connection.stall(); }, UrlError::TimedOut, "", 0.2},
        {"silence in the body",
         [](LoopbackConnection& connection) {
             connection.readRequest();
             connection.send("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nabc");
             connection.stall();
         },
         UrlError::TimedOut, "", 0.2},
        {"100,000 headers", answering(manyHeaders + "\r\n"), UrlError::BadServerResponse},
        {"2,000 short headers", answering(thousands + "\r\n"), UrlError::BadServerResponse},
        {"compressed bomb of 20 MB", answering(okReply(bomb(20'000'000), "Content-Encoding: gzip\r\n")), UrlError::BadServerResponse},
        {"chunk of no size", answering(chunked + "zz\r\nabc\r\n0\r\n\r\n"), UrlError::ConnectionLost},
        {"chunk longer than it says", answering(chunked + "2\r\nabcdef\r\n0\r\n\r\n"), UrlError::ConnectionLost},
        {"chunks without an end", answering(chunked + "3\r\nabc\r\n"), UrlError::ConnectionLost},
        {"no HTTP at all", answering("SSH-2.0-x\r\n"), UrlError::BadServerResponse},
    };
    check("refused", send(test::refusingUrl()), UrlError::CannotConnect);
    for (const Row& row : rows) {
        LoopbackServer server(row.script);
        check(row.name, send(server.url(), [&](XMRequest& request) { request.timeoutInterval = row.timeout; }), row.expected, row.body);
    }
    const std::string small = bomb(500'000);
    LoopbackServer honest(LoopbackServer::replying(okReply(small, "Content-Encoding: gzip\r\n")));
    const auto inflated = send(honest.url());
    EXPECT_EQ(inflated.body().size() / 1000, 500U) << "the bomb would go off";
    LoopbackServer deep(LoopbackServer::replying(okReply(std::string(10'000, '['), "Content-Type: application/json\r\n")));
    const auto tooDeep = send(deep.url(), [](XMRequest& request) { request.responseSerializerType = XMResponseSerializerJSON; });
    check("invalid JSON of 10,000 levels", tooDeep, UrlError::CannotDecode);
    EXPECT_EQ(tooDeep.failure->body.value_or("").size(), 10'000U);
}

TEST_F(FaultMatrix, redirects) {
    const auto to = [](const std::string& place) { return "HTTP/1.1 302 Found\r\nLocation: " + place + "\r\nContent-Length: 0\r\n\r\n"; };
    const auto withSecrets = [](XMRequest& request) {
        request.headers = {{"Authorization", "secret"}, {"token-id", "secret"}};
        request.httpMethod = XMHTTPMethodGET;
    };
    LoopbackServer same(LoopbackServer::answering(
        [&](const std::string& request) { return request.starts_with("GET /there") ? okReply("there") : to("/there"); }));
    check("redirect on the same host", send(same.url(), withSecrets), UrlError{0}, "there");
    EXPECT_NE(same.requests().at(1).find("token-id: secret"), std::string::npos);
    LoopbackServer other(LoopbackServer::replying(okReply("other")));
    LoopbackServer leading(LoopbackServer::replying(to(other.url("/elsewhere"))));
    check("redirect to another host", send(leading.url(), withSecrets), UrlError{0}, "other");
    EXPECT_EQ(other.requests().at(0).find("secret"), std::string::npos) << "credentials do not follow";
    LoopbackServer round(LoopbackServer::replying(to("/again")));
    check("redirect in a loop", send(round.url(), withSecrets), UrlError::BadServerResponse);
}

TEST_F(FaultMatrix, files_that_cannot_be_written_or_read) {
    LoopbackServer server(LoopbackServer::replying(okReply(std::string(900'000, 'x'))));
    const auto downloadTo = [&](const std::filesystem::path& path) {
        return send(server.url("/f"), [&](XMRequest& request) {
            request.requestType = XMRequestDownload;
            request.downloadSavePath = path;
        });
    };
    rlimit before{};
    ::getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small{300'000, before.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &small);
    const auto full = downloadTo(directory.path());
    ::setrlimit(RLIMIT_FSIZE, &before);
    check("destination that is full", full, UrlError::CannotWriteFile);
    check("destination that is not writable", downloadTo("/proc/halvane/f"), UrlError::CannotWriteFile);
    EXPECT_TRUE(std::filesystem::is_empty(directory.path())) << "nothing half made is left";
    const auto whole = downloadTo(directory.path());
    print("destination that is a directory", whole);
    EXPECT_EQ(*whole.response->file(), directory.path() / "f");
    EXPECT_EQ(std::filesystem::file_size(directory.path() / "f"), 900'000U);

    test::Gate serve;
    LoopbackServer slow([&](LoopbackConnection& connection) {
        while (!connection.readRequest().empty()) {
            serve.pass();
            connection.send(okReply("done"));
        }
    });
    engine->setConcurrentOperationCount(1);
    std::ofstream(directory.path() / "part.txt") << "part";
    const auto upload = [&](const char* file) {
        auto promise = std::make_shared<std::promise<Ended>>();
        center->sendRequest(
            [&](XMRequest& request) {
                request.url = slow.url();
                request.requestType = XMRequestUpload;
                request.responseSerializerType = XMResponseSerializerRAW;
                request.addFormDataWithName("file", directory.path() / file);
            },
            {.onFinished = [promise](const Response& response, const Failure& failure) {
                promise->set_value({response, failure});
            }});
        return promise->get_future();
    };
    auto first = upload("part.txt");
    auto second = upload("part.txt");  // waits its turn
    ASSERT_TRUE(test::eventually([&] { return slow.requests().size() == 1; }));
    std::filesystem::remove(directory.path() / "part.txt");
    serve.open();
    check("form file that is there", first.get(), UrlError{0}, "done");
    check("form file that disappears while it waits", second.get(), UrlError::Unknown);
}

TEST_F(FaultMatrix, cancelling_at_every_stage_ends_once_with_cancelled) {
    enum class Stage { Waiting, Connecting, Sent, InHeader, InBody };
    struct Row {
        const char* name;
        Stage stage;
    };
    for (const Row& row : {Row{"cancelled while it waits its turn", Stage::Waiting}, Row{"cancelled at once", Stage::Connecting},
                           Row{"cancelled after the request", Stage::Sent}, Row{"cancelled in the header", Stage::InHeader},
                           Row{"cancelled in the body", Stage::InBody}}) {
        SCOPED_TRACE(row.name);
        std::atomic<bool> reached{false};
        LoopbackServer server([&](LoopbackConnection& connection) {
            connection.readRequest();
            if (row.stage == Stage::InHeader) connection.send("HTTP/1.1 200 OK\r\nX-Half: ");
            if (row.stage == Stage::InBody) connection.send("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nabc");
            reached = true;
            connection.stall();
        });
        makeEngine();
        test::EventLog log;
        const auto start = [&](const std::string& name) {
            return center->sendRequest([&](XMRequest& request) { request.url = server.url(); },
                                       {.onFinished = [&log, name](const Response&, const Failure& failure) {
                                           log.add(name + " " + std::to_string(failure ? failure->code : 0));
                                       }});
        };
        std::vector<std::optional<std::string>> before;
        if (row.stage == Stage::Waiting) {
            for (int i = 0; i < 5; ++i) before.push_back(start("before"));
        }
        const auto identifier = start("it");
        if (row.stage > Stage::Connecting) {
            ASSERT_TRUE(test::eventually([&] { return reached.load(); }));
        }
        for (int twice = 0; twice < 2; ++twice) center->cancelRequest(identifier);
        ASSERT_TRUE(log.await(1));
        EXPECT_EQ(log.events(), std::vector<std::string>{"it -999"});
        EXPECT_EQ(center->getRequest(identifier).index(), 0U);
        std::printf("  %-50s -999, once\n", row.name);
        for (const auto& other : before) center->cancelRequest(other);
        ASSERT_TRUE(log.await(1 + before.size()));
    }
}

TEST_F(FaultMatrix, a_center_destroyed_while_requests_run_tells_nobody_and_blocks_nothing) {
    LoopbackServer server([](LoopbackConnection& connection) { connection.stall(); });
    std::atomic<int> told{0};
    std::weak_ptr<int> held;
    {
        auto token = std::make_shared<int>(1);
        held = token;
        for (int i = 0; i < 20; ++i) {
            center->sendRequest(
                [&](XMRequest& request) {
                    request.url = server.url();
                    request.retryCount = static_cast<std::uint64_t>(i % 2);
                },
                {.onFinished = [&told, token](const Response&, const Failure&) { ++told; }});
        }
    }
    center.reset();
    engine.reset();
    EXPECT_TRUE(test::eventually([&] { return held.expired(); })) << "what the callbacks hold goes";
    EXPECT_EQ(told, 0);
    std::printf("  %-50s nobody is told, nothing is kept\n", "center destroyed while requests run");
}

}  // namespace
}  // namespace halvane::request
