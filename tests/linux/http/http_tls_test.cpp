#include "linux/http/HttpFixture.h"
#include "support/TlsLoopback.h"

#include <openssl/ssl.h>

#include <atomic>

namespace halvane::linux_http {
namespace {

using platform::ClientIdentity;
using platform::HttpTlsPolicy;
using platform::ServerTrust;
using test::LoopbackServer;
using test::okReply;
using test::TestAuthority;
using test::TlsLoopback;
using util::UrlError;

constexpr const char* kNames = "IP:127.0.0.1,DNS:localhost";

class HttpTls : public HttpFixture {
protected:
    [[nodiscard]] HttpTlsPolicy trustingAuthority() const { return {.additionalAuthorities = authority.root().certificate}; }

    const TestAuthority authority;
};

TEST_F(HttpTls, only_trusted_servers_see_a_request) {
    const TestAuthority unknown("Nobody's authority");
    struct Row {
        const char* name;
        TlsLoopback::Options server;
        UrlError expected;
    };
    const Row rows[] = {
        {"trusted", {.identity = authority.issueServer(kNames)}, UrlError{0}},
        {"expired", {.identity = authority.issueServer(kNames, TestAuthority::Validity::Expired)}, UrlError::UntrustedCertificate},
        {"of another host", {.identity = authority.issueServer("IP:127.0.0.2,DNS:localhost")}, UrlError::UntrustedCertificate},
        {"of a name like the address", {.identity = authority.issueServer("DNS:127.0.0.1")}, UrlError::UntrustedCertificate},
        {"self-signed", {.identity = TestAuthority::selfSigned(kNames)}, UrlError::UntrustedCertificate},
        {"unknown root", {.identity = unknown.issueServer(kNames)}, UrlError::UntrustedCertificate},
        {"of a client", {.identity = authority.issueClient("127.0.0.1")}, UrlError::UntrustedCertificate},
        {"TLS 1.2", {.identity = authority.issueServer(kNames), .highestVersion = TLS1_2_VERSION}, UrlError{0}},
        {"TLS 1.1", {.identity = authority.issueServer(kNames), .highestVersion = TLS1_1_VERSION}, UrlError::SecureConnection},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        TlsLoopback tls(row.server);
        LoopbackServer server(LoopbackServer::replying(okReply("secret")), tls.maker());
        makeSession(trustingAuthority());
        const auto result = send({.method = "POST", .url = server.url("/?token=secret"), .body = "password"});
        EXPECT_EQ(codeOf(result), static_cast<int>(row.expected)) << (result.error ? result.error->description : "");
        EXPECT_EQ(server.requests().size(), row.expected == UrlError{0} ? 1U : 0U);
        EXPECT_EQ(result.error.value_or(util::Error{}).description.find("secret"), std::string::npos);
    }
}

TEST_F(HttpTls, names_are_checked_like_addresses) {
    TlsLoopback tls({.identity = authority.issueServer("DNS:localhost")});
    LoopbackServer server(LoopbackServer::replying(okReply("")), tls.maker());
    makeSession(trustingAuthority());
    EXPECT_EQ(codeOf(get("https://LOCALHOST:" + std::to_string(server.port()) + "/")), 0);
    EXPECT_EQ(codeOf(get(server.url())), static_cast<int>(UrlError::UntrustedCertificate));
}

TEST_F(HttpTls, the_policy_decides_with_the_whole_truth_before_a_request_is_sent) {
    struct Row {
        const char* name;
        const char* certificateNames;
        bool authorityKnown;
        bool accept;
        bool trusted;
    };
    const Row rows[] = {
        {"accepted though unknown", kNames, false, true, false}, {"accepted though another's", "DNS:elsewhere", true, true, false},
        {"refused though trusted", kNames, true, false, true},   {"accepted and trusted", kNames, true, true, true},
        {"refused and unknown", kNames, false, false, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const auto identity = authority.issueServer(row.certificateNames);
        TlsLoopback tls({.identity = identity});
        LoopbackServer server(LoopbackServer::replying(okReply("")), tls.maker());
        std::vector<ServerTrust> asked;
        std::size_t requestsWhenAsked = 0;
        makeSession({.evaluateServerTrust =
                         [&](const ServerTrust& trust) {
                             asked.push_back(trust);
                             requestsWhenAsked = server.requests().size();
                             return row.accept;
                         },
                     .additionalAuthorities = row.authorityKnown ? authority.root().certificate : ""});
        EXPECT_EQ(codeOf(get(server.url())), row.accept ? 0 : static_cast<int>(UrlError::UntrustedCertificate));
        ASSERT_EQ(asked.size(), 1U);
        EXPECT_EQ(asked[0].host, "127.0.0.1");
        EXPECT_EQ(asked[0].trustedBySystem, row.trusted);
        EXPECT_EQ(asked[0].chain, std::vector<util::Bytes>{identity.der});
        EXPECT_EQ(requestsWhenAsked, 0U);
        EXPECT_EQ(server.requests().size(), row.accept ? 1U : 0U);
    }
}

TEST_F(HttpTls, an_open_connection_is_not_asked_about_again_but_a_new_one_is) {
    TlsLoopback tls({.identity = authority.issueServer(kNames)});
    LoopbackServer server(LoopbackServer::answering([](const std::string& request) {
                              return okReply("", request.find("/last") != std::string::npos ? "Connection: close\r\n" : "");
                          }),
                          tls.maker());
    std::atomic<int> asked{0};
    bool accept = true;
    makeSession({.evaluateServerTrust = [&](const ServerTrust&) {
        ++asked;
        return accept;
    }});
    for (const char* path : {"/1", "/2", "/last"}) EXPECT_EQ(codeOf(get(server.url(path))), 0);
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(server.connections(), 1);
    accept = false;  // no resumed session may slip past
    EXPECT_EQ(codeOf(get(server.url("/4"))), static_cast<int>(UrlError::UntrustedCertificate));
    EXPECT_EQ(asked, 2);
    EXPECT_EQ(server.requests().size(), 3U);
}

TEST_F(HttpTls, the_client_s_certificate_goes_to_who_asks) {
    using Client = TlsLoopback::Client;
    const auto client = authority.issueClient("chen.xiao");
    const std::string sealed = TestAuthority::pkcs12(client, "pass");
    struct Row {
        const char* name;
        Client server;
        std::optional<ClientIdentity> offered;
        UrlError expected;
        const char* seen;
    };
    const Row rows[] = {
        {"asked", Client::Asked, ClientIdentity{sealed, "pass"}, UrlError{0}, "chen.xiao"},
        {"required", Client::Required, ClientIdentity{sealed, "pass"}, UrlError{0}, "chen.xiao"},
        {"not asked", Client::NotAsked, ClientIdentity{sealed, "pass"}, UrlError{0}, ""},
        {"without pass phrase", Client::Required, ClientIdentity{TestAuthority::pkcs12(client, ""), std::nullopt}, UrlError{0},
         "chen.xiao"},
        {"none to offer", Client::Asked, std::nullopt, UrlError{0}, ""},
        {"required, none to offer", Client::Required, std::nullopt, UrlError::SecureConnection, nullptr},
        {"wrong pass phrase", Client::Asked, ClientIdentity{sealed, "wrong"}, UrlError{0}, ""},
        {"required, wrong pass phrase", Client::Required, ClientIdentity{sealed, "wrong"}, UrlError::SecureConnection, nullptr},
        {"no PKCS#12 at all", Client::Asked, ClientIdentity{"rubbish", "pass"}, UrlError{0}, ""},
        {"no key", Client::Asked, ClientIdentity{TestAuthority::pkcs12({client.certificate, "", ""}, "pass"), "pass"}, UrlError{0}, ""},
        {"another authority's", Client::Required,
         ClientIdentity{TestAuthority::pkcs12(TestAuthority("Other").issueClient("eve"), "pass"), "pass"}, UrlError::SecureConnection,
         nullptr},
    };
    for (const int version : {TLS1_2_VERSION, TLS1_3_VERSION}) {
        for (const Row& row : rows) {
            SCOPED_TRACE(std::string(row.name) + (version == TLS1_3_VERSION ? ", TLS 1.3" : ", TLS 1.2"));
            TlsLoopback tls({.identity = authority.issueServer(kNames),
                             .client = row.server,
                             .clientAuthority = authority.root().certificate,
                             .highestVersion = version});
            LoopbackServer server(LoopbackServer::replying(okReply("")), tls.maker());
            HttpTlsPolicy policy = trustingAuthority();
            std::string askedFor = "nobody";
            policy.clientIdentity = [&](const std::string& host) {
                askedFor = host;
                return row.offered;
            };
            makeSession(std::move(policy));
            EXPECT_EQ(codeOf(get(server.url())), static_cast<int>(row.expected));
            EXPECT_EQ(askedFor, row.server == Client::NotAsked ? "nobody" : "127.0.0.1");
            EXPECT_EQ(tls.clients(), row.seen == nullptr ? std::vector<std::string>() : std::vector<std::string>{row.seen});
        }
    }
}

TEST_F(HttpTls, a_token_does_not_follow_a_redirect_out_of_tls) {
    LoopbackServer plain(LoopbackServer::replying(okReply("plain")));
    TlsLoopback tls({.identity = authority.issueServer(kNames)});
    LoopbackServer server(LoopbackServer::replying("HTTP/1.1 302 Found\r\nLocation: " + plain.url("/n") + "\r\nContent-Length: 0\r\n\r\n"),
                          tls.maker());
    makeSession(trustingAuthority());
    EXPECT_EQ(send({.url = server.url(), .headers = {{"token-id", "t"}}}).body, "plain");
    EXPECT_EQ(plain.requests().at(0).find("token-id"), std::string::npos);
}

TEST_F(HttpTls, handshakes_that_fail_on_the_way) {
    struct Row {
        const char* name;
        const char* answer;
    };
    makeSession(trustingAuthority());
    for (const Row& row : {Row{"no TLS at all", "HTTP/1.1 400 Bad Request\r\n\r\n"}, Row{"closed", ""}}) {
        SCOPED_TRACE(row.name);
        LoopbackServer server([&](test::LoopbackConnection& connection) {
            connection.channel->read();
            connection.send(row.answer);
        });
        EXPECT_EQ(codeOf(get("https://127.0.0.1:" + std::to_string(server.port()) + "/")), static_cast<int>(UrlError::SecureConnection));
    }
    LoopbackServer silent([](test::LoopbackConnection& connection) { connection.stall(); });
    const auto result =
        send({.url = "https://127.0.0.1:" + std::to_string(silent.port()) + "/", .timeout = std::chrono::milliseconds(200)});
    EXPECT_EQ(codeOf(result), static_cast<int>(UrlError::TimedOut));
}

}  // namespace
}  // namespace halvane::linux_http
