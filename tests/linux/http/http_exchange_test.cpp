#include "linux/http/HttpFixture.h"

#include <algorithm>

namespace halvane::linux_http {
namespace {

using platform::HttpHeaders;
using platform::HttpRequest;
using test::LoopbackConnection;
using test::LoopbackServer;
using test::okReply;

/// What gzip makes of "compressed text".
const std::string kGzipped(
    "\x1f\x8b\x08\x00\x00\x00\x00\x00\x02\x03\x4b\xce\xcf\x2d\x28\x4a\x2d\x2e\x4e\x4d\x51\x28\x49\xad\x28\x01\x00\xc2\x18\xd8\xd8\x0f\x00"
    "\x00\x00",
    35);

class HttpExchange : public HttpFixture {};

TEST_F(HttpExchange, requests_go_out_as_they_were_made) {
    struct Row {
        const char* name;
        HttpRequest request;
        const char* startsWith;
        const char* endsWith;
    };
    const Row rows[] = {
        {"get", {.url = "/a/../b%20c?x=1#f"}, "GET /a/../b%20c?x=1 HTTP/1.1\r\n", "\r\n\r\n"},
        {"post", {.method = "POST", .url = "/", .body = "{}"}, "POST / HTTP/1.1\r\n", "\r\nContent-Length: 2\r\n\r\n{}"},
        {"post of nothing", {.method = "POST", .url = "/"}, "POST / HTTP/1.1\r\n", "\r\nContent-Length: 0\r\n\r\n"},
        {"put", {.method = "PUT", .url = "/", .body = std::string("a\0b", 3)}, "PUT / HTTP/1.1\r\n", "Content-Length: 3\r\n\r\na\0b"},
        {"patch of nothing", {.method = "PATCH", .url = "/"}, "PATCH / HTTP/1.1\r\n", "\r\nContent-Length: 0\r\n\r\n"},
        {"delete", {.method = "DELETE", .url = "/x"}, "DELETE /x HTTP/1.1\r\n", "\r\n\r\n"},
        {"delete with a body", {.method = "DELETE", .url = "/x", .body = "b"}, "DELETE /x HTTP/1.1\r\n", "Content-Length: 1\r\n\r\nb"},
        {"get with a body", {.url = "/x", .body = "b"}, "GET /x HTTP/1.1\r\n", "Content-Length: 1\r\n\r\nb"},
        {"head", {.method = "HEAD", .url = "/x", .body = "never"}, "HEAD /x HTTP/1.1\r\n", "\r\n\r\n"},
    };
    LoopbackServer server(LoopbackServer::replying("HTTP/1.1 204 No Content\r\n\r\n"));
    makeSession();
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        HttpRequest request = row.request;
        request.url = server.url(request.url);
        ASSERT_EQ(codeOf(send(request)), 0);
        const std::string sent = server.requests().back();
        EXPECT_TRUE(sent.starts_with(row.startsWith)) << sent;
        // Literals end at a NUL, the body of "put" does not.
        const std::string end = row.name == std::string("put") ? std::string("Content-Length: 3\r\n\r\na\0b", 24) : row.endsWith;
        EXPECT_TRUE(sent.ends_with(end)) << sent;
        for (const char* never : {"Expect:", "Content-Type:", "Cookie:", "Authorization:"}) EXPECT_EQ(sent.find(never), std::string::npos);
    }
    EXPECT_EQ(server.connections(), 1) << "one connection serves them all";
}

TEST_F(HttpExchange, header_fields_go_out_verbatim_and_forge_nothing) {
    LoopbackServer server(LoopbackServer::replying(okReply("")));
    HttpHeaders headers{{"token-id", ""},
                        {"X-Blank", "  "},
                        {"Content-Type", "application/json; charset=utf-8"},
                        {"X-Chinese", "\xE8\x81\x8C"},
                        {"Content-Length", "99"},
                        {"Transfer-Encoding", "chunked"},
                        {"X Bad", "1"},
                        {"X-Evil: 1", "2"},
                        {"", "nameless"}};
    headers.set("X-Split", "1\r\nX-Forged: 1");
    ASSERT_EQ(codeOf(send({.method = "POST", .url = server.url(), .headers = headers, .body = "{}"})), 0);
    const std::string sent = server.requests().back();
    for (const char* line : {"\r\ntoken-id:\r\n", "\r\nX-Blank:\r\n", "\r\nContent-Type: application/json; charset=utf-8\r\n",
                             "\r\nX-Chinese: \xE8\x81\x8C\r\n", "\r\nContent-Length: 2\r\n"}) {
        EXPECT_NE(sent.find(line), std::string::npos) << line << sent;
    }
    for (const char* part : {": 99", "chunked", "Bad", "Evil", "nameless", "Forged", "Split"})
        EXPECT_EQ(sent.find(part), std::string::npos) << part;
}

TEST_F(HttpExchange, a_second_request_carries_nothing_of_the_first) {
    LoopbackServer server(LoopbackServer::replying(okReply("")));
    makeSession();
    send({.method = "PUT", .url = server.url("/1"), .headers = {{"token-id", "t"}}, .body = std::string(100'000, 'x')});
    send({.url = server.url("/2")});
    auto stream = std::make_shared<TextStream>("streamed");
    stream->announced = 8;
    send({.method = "POST", .url = server.url("/3"), .bodyStream = stream});
    send({.method = "POST", .url = server.url("/4"), .body = "plain"});
    send({.method = "HEAD", .url = server.url("/5")});
    send({.method = "DELETE", .url = server.url("/6")});
    const auto sent = server.requests();
    ASSERT_EQ(sent.size(), 6U);
    EXPECT_EQ(sent[1].find("token-id"), std::string::npos);
    EXPECT_TRUE(sent[1].starts_with("GET /2 ") && sent[1].ends_with("\r\n\r\n")) << sent[1];
    EXPECT_TRUE(sent[2].starts_with("POST /3 ") && sent[2].ends_with("Content-Length: 8\r\n\r\nstreamed")) << sent[2];
    EXPECT_TRUE(sent[3].starts_with("POST /4 ") && sent[3].ends_with("Content-Length: 5\r\n\r\nplain")) << sent[3];
    EXPECT_TRUE(sent[5].starts_with("DELETE /6 ") && sent[5].ends_with("\r\n\r\n")) << sent[5];
}

TEST_F(HttpExchange, replies_are_understood_whole_and_byte_by_byte) {
    struct Row {
        const char* name;
        std::string reply;
        int status;
        std::string body;
        HttpHeaders headers;
        const char* method = "GET";
    };
    const Row rows[] = {
        {"length", "HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\nabc", 200, "abc", {{"Content-Length", "3"}}},
        {"no content", "HTTP/1.1 204 No Content\r\nX: 1\r\n\r\n", 204, "", {{"X", "1"}}},
        {"not modified", "HTTP/1.1 304 Not Modified\r\nContent-Length: 5\r\n\r\n", 304, "", {{"Content-Length", "5"}}},
        {"head", "HTTP/1.1 200 OK\r\nContent-Length: 900\r\n\r\n", 200, "", {{"Content-Length", "900"}}, "HEAD"},
        {"no reason phrase", "HTTP/1.1 200\r\nContent-Length: 1\r\n\r\nx", 200, "x", {{"Content-Length", "1"}}},
        {"failure with a body", "HTTP/1.1 500 Oh\r\nContent-Length: 3\r\n\r\nwhy", 500, "why", {{"Content-Length", "3"}}},
        {"until the end", "HTTP/1.1 200 OK\r\nConnection: close\r\n\r\nabc", 200, "abc", {{"Connection", "close"}}},
        {"old version", "HTTP/1.0 200 OK\r\n\r\nabc", 200, "abc", {}},
        {"chunks and a trailer",
         "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n1;e=1\r\na\r\n2\r\nbc\r\n0\r\nX-Trailer: t\r\nHTTP/1.1: 500\r\n\r\n",
         200,
         "abc",
         {{"Transfer-Encoding", "chunked"}}},
        {"continued",
         "HTTP/1.1 100 Continue\r\nX-Early: 1\r\n\r\nHTTP/1.1 103 Early Hints\r\nX-Early: 2\r\n\r\nHTTP/1.1 200 OK\r\nContent-Length: "
         "1\r\n\r\nx",
         200,
         "x",
         {{"Content-Length", "1"}}},
        {"a field many times",
         "HTTP/1.1 200 OK\r\nVia: a\r\nvia:b\r\nVIA:  c  \r\n: nameless\r\nContent-Length: 0\r\n\r\n",
         200,
         "",
         {{"Via", "a, b, c"}, {"Content-Length", "0"}}},
        {"redirect that leads nowhere", "HTTP/1.1 302 Found\r\nContent-Length: 2\r\n\r\nhm", 302, "hm", {{"Content-Length", "2"}}},
        {"zero bytes in the body",
         std::string("HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\n\0\0x", 41),
         200,
         std::string("\0\0x", 3),
         {{"Content-Length", "3"}}},
        {"compressed",
         okReply(kGzipped, "Content-Encoding: gzip\r\n"),
         200,
         "compressed text",
         {{"Content-Encoding", "gzip"}, {"Content-Length", std::to_string(kGzipped.size())}}},
    };
    for (const bool byteByByte : {false, true}) {
        for (const Row& row : rows) {
            SCOPED_TRACE(std::string(row.name) + (byteByByte ? ", byte by byte" : ""));
            LoopbackServer server([&](LoopbackConnection& connection) {
                if (connection.readRequest().empty()) return;
                byteByByte ? connection.trickle(row.reply) : connection.send(row.reply);
            });
            makeSession();
            const auto result = send({.method = row.method, .url = server.url("/x")});
            ASSERT_EQ(codeOf(result), 0) << result.error->description;
            ASSERT_TRUE(result.response);
            EXPECT_EQ(result.response->status, row.status);
            EXPECT_EQ(result.response->url, server.url("/x"));
            EXPECT_EQ(result.response->headers.fields(), row.headers.fields());
            EXPECT_EQ(result.body, row.body);
        }
    }
}

TEST_F(HttpExchange, fifty_megabytes_arrive_whole) {
    std::string body(50 * 1024 * 1024, '\0');
    for (std::size_t i = 0; i < body.size(); i += 1009) body[i] = static_cast<char>(i % 251);
    LoopbackServer server(LoopbackServer::replying(okReply(body)));
    const auto result = get(server.url());
    EXPECT_EQ(codeOf(result), 0);
    EXPECT_TRUE(result.body == body);
}

TEST_F(HttpExchange, streamed_bodies_arrive_whole) {
    struct Row {
        const char* name;
        std::size_t size;
        bool announced;
    };
    const Row rows[] = {{"short", 20, true},
                        {"short, chunked", 20, false},
                        {"large", 3'000'000, true},
                        {"large, chunked", 3'000'000, false},
                        {"empty", 0, true}};
    std::string received;
    LoopbackServer server(LoopbackServer::replying(okReply("")));
    makeSession();
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        auto stream = std::make_shared<TextStream>(std::string(row.size, 'u'));
        stream->longestPiece = 70'000;
        if (row.announced) stream->announced = row.size;
        EXPECT_EQ(codeOf(send({.method = "POST", .url = server.url(), .bodyStream = stream})), 0);
        const std::string request = server.requests().back();
        const std::string head = request.substr(0, request.find("\r\n\r\n"));
        EXPECT_EQ(std::ranges::count(request.substr(head.size()), 'u'), static_cast<std::ptrdiff_t>(row.size));
        EXPECT_EQ(head.find("Transfer-Encoding: chunked") != std::string::npos, !row.announced) << head;
    }
}

TEST_F(HttpExchange, a_connection_that_the_server_has_closed_is_replaced) {
    LoopbackServer server([](LoopbackConnection& connection) {
        connection.readRequest();
        connection.send(okReply("x"));  // and closes, without having said so
    });
    makeSession();
    for (int i = 0; i < 5; ++i) EXPECT_EQ(codeOf(send({.method = "POST", .url = server.url(), .body = "b"})), 0);
}

}  // namespace
}  // namespace halvane::linux_http
