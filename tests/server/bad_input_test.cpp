#include "server/RunningCompany.h"
#include "util/Json.h"

#include <thread>

namespace halvane::test {
namespace {

class BadInput : public RunningCompany {
protected:
    /// Still there, and still right.
    void TearDown() override { EXPECT_TRUE(signIn("chen.xiao").starts_with(kOk)) << "the server no longer serves"; }

    static void expectReason(const HttpProbe::Reply& reply, int status) {
        EXPECT_EQ(reply.status, status) << reply.body;
        const auto decoded = util::Json::decode(reply.body);
        ASSERT_TRUE(decoded) << reply.body;
        EXPECT_EQ(util::integerOf(util::member(&*decoded, "code")), status);
        EXPECT_FALSE(util::textOf(util::member(&*decoded, "msg")).value_or("").empty());
    }
};

TEST_F(BadInput, a_body_that_is_no_object_of_texts_gets_400_with_a_reason) {
    const std::pair<const char*, std::string> rows[] = {
        {"nothing", ""},
        {"form", "username=chen.xiao"},
        {"list", R"(["username","password"])"},
        {"text", R"("username")"},
        {"null", "null"},
        {"cut off", R"({"username":"chen.xiao","password)"},
        {"no user", R"({"password":"x"})"},
        {"no password", R"({"username":"x"})"},
        {"null user", R"({"username":null,"password":"x"})"},
        {"number", R"({"username":1001,"password":"x"})"},
        {"object", R"({"username":{"$ne":""},"password":"x"})"},
        {"list as text", R"({"username":["chen.xiao"],"password":"x"})"},
        {"number in an optional field", R"({"username":"chen.xiao","password":"Halvane-demo-1","sn":7})"},
        {"embedded NUL", std::string("{\"username\":\"chen\0.xiao\",\"password\":\"x\"}", 41)},
        {"escaped NUL", R"({"username":"chen.xiao\u0000","password":"x"})"},
        {"invalid UTF-8", "{\"username\":\"\xC3\x28\",\"password\":\"x\"}"},
        {"lone surrogate", R"({"username":"\ud800","password":"x"})"},
        {"deep nesting", std::string(20'000, '[')},
        {"deep nesting inside", R"({"username":)" + std::string(20'000, '[') + std::string(20'000, ']') + "}"},
        {"long text", R"({"username":")" + std::string(2000, 'x') + R"(","password":"x"})"},
    };
    for (const char* operation : {"/api/client/login", "/papi/admin/create_ad_cert"}) {
        for (const auto& [name, body] : rows) {
            SCOPED_TRACE(std::string(operation) + ", " + name);
            if (std::string_view(name).starts_with("number in") && std::string_view(operation).ends_with("cert")) continue;
            expectReason(probe.postJson(operation, body), 400);
        }
    }
    EXPECT_TRUE(company.computers.all().empty());
}

TEST_F(BadInput, every_operation_refuses_a_malformed_body_even_with_a_session) {
    const auto token = tokenOf("chen.xiao");
    for (const char* operation : {"equipment_status", "equipment/uninstall_apply", "equipment/uninstall_sure"}) {
        SCOPED_TRACE(operation);
        expectReason(probe.postJson(std::string("/api/client/user/") + operation, "[]", token), 400);
        expectReason(probe.postJson(std::string("/api/client/user/") + operation, R"({"username":1})", token), 400);
    }
    expectReason(probe.get("/api/client/user/work_address/1001", token), 400);
    expectReason(probe.get("/api/client/user/work_address/1001?work_address=%FF", token), 400);
    expectReason(probe.get("/api/client/user/work_address/1001?work_address=a%00b", token), 400);
}

TEST_F(BadInput, content_types_other_than_json_get_400) {
    const std::string body = R"({"username":"chen.xiao","password":"Halvane-demo-1"})";
    for (const char* header : {"", "Content-Type: text/plain\r\n", "Content-Type: application/x-www-form-urlencoded\r\n",
                               "Content-Type: multipart/form-data; boundary=x\r\n", "Content-Type: multipart/form-data\r\n"}) {
        SCOPED_TRACE(header);
        expectReason(probe.request("POST", "/api/client/login", header, body), 400);
    }
    EXPECT_EQ(probe.request("POST", "/api/client/login", "Content-Type: Application/JSON\r\n", body).status, 200);
}

TEST_F(BadInput, unknown_places_get_404_and_wrong_methods_405) {
    for (const char* target : {"/", "/api/client/login/", "/api/client", "/static/../company.sqlite", "/../../etc/passwd",
                               "/static/avatar/../x.svg", "/static/avatar/.svg", "/static/avatar/99999999999999999999.svg",
                               "/static/avatar/-1.svg", "/%00", "/%2e%2e/%2e%2e/", "/api/client/login%00", "/a%0d%0aX-Evil:%201", "/%ff"}) {
        SCOPED_TRACE(target);
        expectReason(probe.request("GET", target), 404);
        expectReason(probe.postJson("/nowhere" + std::string(target), "{}"), 404);
    }
    for (const char* method : {"GET", "PUT", "DELETE", "PATCH", "OPTIONS"}) {
        SCOPED_TRACE(method);
        const auto reply = probe.request(method, "/api/client/login");
        expectReason(reply, 405);
        EXPECT_EQ(reply.headers.at("allow"), "POST");
    }
}

TEST_F(BadInput, sizes_are_limited) {
    const std::string tooLarge = R"({"username":")" + std::string(70'000, 'x') + "\"}";
    expectReason(probe.postJson("/api/client/login", tooLarge), 413);
    expectReason(probe.postJson("/nowhere", tooLarge), 413);

    std::string chunked =
        "POST /api/client/login HTTP/1.1\r\nConnection: close\r\nContent-Type: application/json\r\nTransfer-Encoding: chunked\r\n\r\n";
    for (int i = 0; i < 20; ++i) chunked += "1000\r\n" + std::string(0x1000, 'x') + "\r\n";
    expectReason(HttpProbe::parse(probe.exchange(chunked + "0\r\n\r\n")), 413);

    expectReason(probe.request("GET", "/" + std::string(2000, 'a')), 414);
    EXPECT_EQ(probe.request("GET", "/" + std::string(20'000, 'a')).status, 414);
    EXPECT_GE(probe.request("GET", "/updatepwd/index", "X: " + std::string(100'000, 'h') + "\r\n").status, 0);
    // The longest path that is let through to the operations.
    expectReason(probe.request("GET", "/" + std::string(1000, 'a')), 404);
}

TEST_F(BadInput, what_is_not_http_is_refused_or_dropped) {
    const std::pair<const char*, std::string> rows[] = {
        {"nothing", ""},
        {"line feeds", "\r\n\r\n\r\n"},
        {"garbage", std::string("\x16\x03\x01\x02\x00\x01\x00\x01\xfc\x03\x03\0\0\0", 14) + std::string(500, '\xfe')},
        {"no version", "GET /\r\n\r\n"},
        {"no path", "GET  HTTP/1.1\r\n\r\n"},
        {"unknown method", "BREW /pot HTTP/1.1\r\n\r\n"},
        {"other protocol", "GET / SPDY/3\r\n\r\n"},
        {"headers without colon", "GET / HTTP/1.1\r\nnonsense\r\n\r\n"},
        {"endless line", std::string(200'000, 'G')},
        {"negative length", "POST /api/client/login HTTP/1.1\r\nContent-Length: -5\r\n\r\n"},
        {"length is no number", "POST /api/client/login HTTP/1.1\r\nContent-Length: many\r\n\r\n{}"},
        {"length beyond the body", "POST /api/client/login HTTP/1.1\r\nContent-Length: 5000\r\n\r\n{}"},
        {"huge length", "POST /api/client/login HTTP/1.1\r\nContent-Length: 18446744073709551615\r\n\r\n{}"},
        {"bad chunk size", "POST /api/client/login HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\nzz\r\n{}\r\n0\r\n\r\n"},
        {"huge chunk size", "POST /api/client/login HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\nffffffffffffffff\r\n{}\r\n"},
        {"bad compression", "POST /api/client/login HTTP/1.1\r\nContent-Encoding: gzip\r\nContent-Length: 4\r\n\r\nnope"},
        {"unknown compression", "POST /api/client/login HTTP/1.1\r\nContent-Encoding: zap\r\nContent-Length: 4\r\n\r\nnope"},
        {"broken escapes", "GET /%zz%1?work_address=%&%=%%%41 HTTP/1.1\r\n\r\n"},
        {"many ranges", "GET /updatepwd/index HTTP/1.1\r\nRange: bytes=9-1,-,5-,99999999999999999999-\r\n\r\n"},
        {"NUL in a header", std::string("GET / HTTP/1.1\r\ntoken-id: a\0b\r\n\r\n", 34)},
        {"two requests, the second broken", "GET /updatepwd/index HTTP/1.1\r\n\r\n\x01\x02\x03\r\n\r\n"},
    };
    for (const auto& [name, bytes] : rows) {
        SCOPED_TRACE(name);
        const auto reply = HttpProbe::parse(probe.exchange(bytes, HttpProbe::Sender::Ends));
        EXPECT_NE(reply.status, 500) << reply.body;
        probe.sendAndLeave(bytes);
        if (bytes.size() > 3) probe.sendAndLeave(std::string_view(bytes).substr(0, bytes.size() / 2));
    }
    expectReason(HttpProbe::parse(probe.exchange("BREW /pot HTTP/1.1\r\n\r\n")), 400);
}

TEST_F(BadInput, many_clients_at_once_all_get_their_answer) {
    const auto token = tokenOf("chen.xiao");
    std::atomic<int> right = 0;
    std::vector<std::thread> clients;
    for (int client = 0; client < 8; ++client) {
        clients.emplace_back([&, client] {
            for (int i = 0; i < 15; ++i) {
                if (statusOf("chen.xiao", "S" + std::to_string(client), token).starts_with(kOk)) ++right;
                if (i % 5 == 0) probe.sendAndLeave("POST /api/client/login HTTP/1.1\r\nContent-Length: 90\r\n\r\n{");
            }
        });
    }
    for (auto& client : clients) client.join();
    EXPECT_EQ(right, 8 * 15);
    EXPECT_EQ(company.computers.all().size(), 8U);
}

TEST_F(BadInput, pages_answer_without_a_session) {
    const auto page = probe.request("GET", "/updatepwd/index");
    EXPECT_EQ(page.status, 200);
    EXPECT_EQ(page.headers.at("content-type"), "text/html; charset=utf-8");
    EXPECT_NE(page.body.find("信息技术部"), std::string::npos);
    const auto picture = probe.request("GET", dataField(signIn("chen.xiao"), "header_img").substr(url.size()));
    EXPECT_EQ(picture.headers.at("content-type"), "image/svg+xml");
    EXPECT_TRUE(picture.body.starts_with("<svg "));
    const auto head = probe.request("HEAD", "/updatepwd/index");
    EXPECT_EQ(head.status, 200);
    EXPECT_EQ(head.body, "");
}

}  // namespace
}  // namespace halvane::test
