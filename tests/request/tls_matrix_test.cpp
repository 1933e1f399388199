#include "request/LiveRequests.h"
#include "support/TemporaryDirectory.h"
#include "support/TlsLoopback.h"

#include <openssl/ssl.h>

#include <cstdio>
#include <fstream>

namespace halvane::request {
namespace {

using test::LoopbackServer;
using test::TestAuthority;
using test::TestIdentity;
using test::TlsLoopback;
using util::UrlError;
using Client = TlsLoopback::Client;
using Validity = TestAuthority::Validity;

constexpr const char* kNames = "IP:127.0.0.1,DNS:localhost";
constexpr auto kAccepted = UrlError{0};

class TlsMatrix : public LiveRequests {
protected:
    void SetUp() override {
        // What the system trusts, for this process: sessions read it when they first need it.
        std::ofstream(directory.path() / "roots.pem") << authority.root().certificate;
        ::setenv("SSL_CERT_FILE", (directory.path() / "roots.pem").c_str(), 1);
    }
    void TearDown() override {
        LiveRequests::TearDown();
        ::unsetenv("SSL_CERT_FILE");
    }

    struct Row {
        const char* name;
        TlsLoopback::Options server;
        bool pinnedHost = false;
        std::vector<util::Bytes> pins;
        UrlError expected = kAccepted;
        std::optional<std::pair<util::Bytes, std::string>> pkcs12;
        std::vector<std::string> clients;  ///< names that the server has seen; compared where it asks for them
    };

    /// One request with a secret in it, on a new engine; prints the row of the matrix.
    void check(const Row& row) {
        SCOPED_TRACE(row.name);
        TlsLoopback tls(row.server);
        LoopbackServer server(LoopbackServer::replying(test::okReply("welcome")), tls.maker());
        makeEngine();
        if (row.pinnedHost) engine->addSSLPinningURL(server.url());
        for (const auto& pin : row.pins) engine->addSSLPinningCert(pin);
        if (row.pkcs12) engine->addTwowayAuthenticationPKCS12(row.pkcs12->first, row.pkcs12->second);
        const auto ended = send(server.url(), [](XMRequest& request) { request.parameters = util::Dictionary{{"password", "secret"}}; });
        EXPECT_EQ(ended.code(), static_cast<int>(row.expected));
        EXPECT_EQ(ended.body(), row.expected == kAccepted ? "welcome" : "");
        EXPECT_EQ(server.requests().size(), row.expected == kAccepted ? 1U : 0U);
        if (row.server.client != Client::NotAsked) {
            EXPECT_EQ(tls.clients(), row.clients);
        }
        std::printf("  %-52s %-9s requests seen: %zu  %s\n", row.name, row.expected == kAccepted ? "accepted" : "refused",
                    server.requests().size(), ended.failure ? ended.failure->description.c_str() : "");
    }

    [[nodiscard]] TlsLoopback::Options asking(Client client, int version = 0) const {
        return {.identity = leaf, .client = client, .clientAuthority = authority.root().certificate, .highestVersion = version};
    }

    const test::TemporaryDirectory directory;
    const TestAuthority authority;
    const TestAuthority intermediate{"Intermediate", authority};
    const TestAuthority unknown{"Nobody's authority"};
    const TestIdentity leaf = authority.issueServer(kNames);
    const TestIdentity strange = unknown.issueServer(kNames);
    const TestIdentity inner = intermediate.issueServer(kNames);
};

TEST_F(TlsMatrix, ordinary_hosts) {
    const auto refused = UrlError::UntrustedCertificate;
    const Row rows[] = {
        {"trusted", {.identity = leaf}},
        {"trusted through an intermediate", {.identity = inner, .intermediate = intermediate.root().certificate}},
        {"expired", {.identity = authority.issueServer(kNames, Validity::Expired)}, false, {}, refused},
        {"not yet valid", {.identity = authority.issueServer(kNames, Validity::NotYet)}, false, {}, refused},
        {"of another host", {.identity = authority.issueServer("DNS:elsewhere.example")}, false, {}, refused},
        {"self-signed", {.identity = TestAuthority::selfSigned(kNames)}, false, {}, refused},
        {"unknown root", {.identity = strange}, false, {}, refused},
        {"missing intermediate", {.identity = inner}, false, {}, refused},
        {"TLS 1.0", {.identity = leaf, .highestVersion = TLS1_VERSION}, false, {}, UrlError::SecureConnection},
        {"TLS 1.1", {.identity = leaf, .highestVersion = TLS1_1_VERSION}, false, {}, UrlError::SecureConnection},
        {"TLS 1.2", {.identity = leaf, .highestVersion = TLS1_2_VERSION}},
        {"pins of other hosts do not count", {.identity = leaf}, false, {strange.der}},
    };
    for (const Row& row : rows) check(row);
}

TEST_F(TlsMatrix, pinned_hosts) {
    const auto refused = UrlError::UntrustedCertificate;
    const auto expired = unknown.issueServer(kNames, Validity::Expired);
    const auto elsewhere = unknown.issueServer("DNS:elsewhere.example");
    const auto alone = TestAuthority::selfSigned(kNames);
    const TlsLoopback::Options throughIntermediate{.identity = inner, .intermediate = intermediate.root().certificate};
    const Row rows[] = {
        {"pinned leaf", {.identity = strange}, true, {strange.der}},
        {"pinned leaf, self-signed", {.identity = alone}, true, {alone.der}},
        {"pinned CA", {.identity = strange}, true, {unknown.root().der}},
        {"pinned intermediate", throughIntermediate, true, {intermediate.root().der}},
        {"pinned root above an intermediate", throughIntermediate, true, {authority.root().der}},
        {"pinned root, intermediate missing", {.identity = inner}, true, {authority.root().der}, refused},
        {"pinned leaf among others", {.identity = strange}, true, {leaf.der, strange.der}},
        {"pin of another, though the system trusts", {.identity = leaf}, true, {strange.der}, refused},
        {"no pin at all, though the system trusts", {.identity = leaf}, true, {}, refused},
        {"pin that is no certificate", {.identity = leaf}, true, {"rubbish"}, refused},
        {"pinned leaf, expired", {.identity = expired}, true, {expired.der}, refused},
        {"pinned leaf, of another host", {.identity = elsewhere}, true, {elsewhere.der}, refused},
        {"pinned CA, leaf expired", {.identity = expired}, true, {unknown.root().der}, refused},
        {"pinned leaf, TLS 1.1", {.identity = leaf, .highestVersion = TLS1_1_VERSION}, true, {leaf.der}, UrlError::SecureConnection},
    };
    for (const Row& row : rows) check(row);
}

TEST_F(TlsMatrix, client_certificates) {
    const auto sealed = TestAuthority::pkcs12(authority.issueClient("chen.xiao"), "pass");
    const auto expired = TestAuthority::pkcs12(authority.issueClient("late", Validity::Expired), "pass");
    const auto given = std::pair(sealed, std::string("pass"));
    const auto wrong = std::pair(sealed, std::string("wrong"));
    const auto late = std::pair(expired, std::string("pass"));
    const auto refused = UrlError::SecureConnection;
    const std::vector<std::string> nobody{""};
    for (const int version : {TLS1_2_VERSION, TLS1_3_VERSION}) {
        const Row rows[] = {
            {"client certificate asked, given", asking(Client::Asked, version), true, {leaf.der}, kAccepted, given, {"chen.xiao"}},
            {"client certificate required, given", asking(Client::Required, version), true, {leaf.der}, kAccepted, given, {"chen.xiao"}},
            {"client certificate not asked", {.identity = leaf}, true, {leaf.der}, kAccepted, given},
            {"client certificate asked, missing", asking(Client::Asked, version), true, {leaf.der}, kAccepted, {}, nobody},
            {"client certificate required, missing", asking(Client::Required, version), true, {leaf.der}, refused, {}},
            {"client certificate asked, wrong password", asking(Client::Asked, version), true, {leaf.der}, kAccepted, wrong, nobody},
            {"client certificate required, wrong password", asking(Client::Required, version), true, {leaf.der}, refused, wrong},
            {"client certificate required, expired", asking(Client::Required, version), true, {leaf.der}, refused, late},
            {"client certificate asked, host not registered", asking(Client::Asked, version), false, {}, kAccepted, given, nobody},
            {"client certificate required, host not registered", asking(Client::Required, version), false, {}, refused, given},
        };
        std::printf("  TLS 1.%d\n", version == TLS1_2_VERSION ? 2 : 3);
        for (const Row& row : rows) check(row);
    }
}

TEST_F(TlsMatrix, a_pooled_connection_is_used_again_and_a_new_one_judged_again) {
    TlsLoopback tls(asking(Client::Asked));
    LoopbackServer server(LoopbackServer::answering([](const std::string& request) {
                              return test::okReply("", request.find("/last") != std::string::npos ? "Connection: close\r\n" : "");
                          }),
                          tls.maker());
    makeEngine();
    engine->addSSLPinningURL(server.url());
    engine->addSSLPinningCert(leaf.der);
    engine->addTwowayAuthenticationPKCS12(TestAuthority::pkcs12(authority.issueClient("chen.xiao"), "pass"), "pass");
    for (const char* path : {"/1", "/2", "/3", "/last"}) EXPECT_EQ(send(server.url(path)).code(), 0);
    EXPECT_EQ(server.connections(), 1);
    EXPECT_EQ(send(server.url("/new")).code(), 0);
    EXPECT_EQ(tls.clients(), (std::vector<std::string>{"chen.xiao", "chen.xiao"}));
    std::printf("  %-52s 5 requests, %d connections, %zu handshakes\n", "reuse of a pooled connection", server.connections(),
                tls.clients().size());
}

TEST_F(TlsMatrix, redirects_lead_neither_past_the_pins_nor_to_the_client_certificate) {
    TlsLoopback pinnedTls({.identity = strange});
    LoopbackServer pinned(LoopbackServer::replying(test::okReply("welcome")), pinnedTls.maker());
    // By name: another host than the address, with a root domain of its own.
    const std::string byName = "https://localhost:" + std::to_string(pinned.port()) + "/";
    TlsLoopback ordinaryTls({.identity = leaf});
    LoopbackServer ordinary(LoopbackServer::replying("HTTP/1.1 302 Found\r\nLocation: " + byName + "\r\nContent-Length: 0\r\n\r\n"),
                            ordinaryTls.maker());
    makeEngine();
    engine->addSSLPinningURL("https://localhost");
    EXPECT_EQ(send(ordinary.url()).code(), static_cast<int>(UrlError::UntrustedCertificate));
    EXPECT_EQ(pinned.requests().size(), 0U);
    engine->addSSLPinningCert(strange.der);
    EXPECT_EQ(send(ordinary.url()).body(), "welcome") << "the pins count where the redirect leads";

    TlsLoopback askingTls(asking(Client::Asked));
    LoopbackServer curious(LoopbackServer::replying(test::okReply("")), askingTls.maker());
    TlsLoopback leadingTls({.identity = leaf});
    LoopbackServer leading(LoopbackServer::replying("HTTP/1.1 302 Found\r\nLocation: " + curious.url() + "\r\nContent-Length: 0\r\n\r\n"),
                           leadingTls.maker());
    engine->addSSLPinningCert(leaf.der);
    engine->addTwowayAuthenticationPKCS12(TestAuthority::pkcs12(authority.issueClient("chen.xiao"), "pass"), "pass");
    EXPECT_EQ(send("https://localhost:" + std::to_string(leading.port()) + "/").code(), 0);
    EXPECT_EQ(askingTls.clients(), std::vector<std::string>{""}) << "127.0.0.1 is not registered";
}

}  // namespace
}  // namespace halvane::request
