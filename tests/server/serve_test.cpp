#include "server/RunningCompany.h"
#include "server/ServerProcess.h"
#include "server/authority/CertificateBuilder.h"
#include "util/Text.h"

#include <openssl/pem.h>
#include <openssl/ssl.h>

#include <csignal>
#include <fstream>
#include <iterator>

namespace halvane::test {
namespace {

std::string contentOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

class Serve : public testing::Test {
protected:
    [[nodiscard]] std::vector<std::string> command(std::vector<std::string> words) const {
        words.insert(words.end(), {"--data", (directory.path() / "data").string()});
        return words;
    }
    /// What is left of the ready line.
    static std::string urlOf(ServerProcess& process) {
        const std::string line = process.line();
        EXPECT_TRUE(line.starts_with("halvane-server: http://127.0.0.1:")) << line;
        return line.substr(std::string_view("halvane-server: ").size());
    }

    const TemporaryDirectory directory;
};

TEST_F(Serve, serves_a_seeded_company_and_ends_with_0_on_sigterm_and_sigint) {
    EXPECT_EQ(ServerProcess(command({"seed", "--password", "Halvane-demo-1"})).end(), 0);
    for (const int signal : {SIGTERM, SIGINT}) {
        ServerProcess process(command({"serve", "--port", "0"}));
        const HttpProbe probe(urlOf(process));
        const auto login = probe.postJson("/api/client/login", R"({"username":"chen.xiao","password":"Halvane-demo-1","sn":"S"})");
        const auto token = dataField(login.body, "token");
        EXPECT_EQ(ServerProcess(command({"computer", "lock", "S"})).end(), 0) << "an administrator works beside it";
        const auto status = probe.postJson("/api/client/user/equipment_status", R"({"username":"chen.xiao","sn":"S"})", token);
        EXPECT_EQ(dataField(status.body, "lock_status"), "Yes");
        EXPECT_EQ(process.end(signal), 0);
        EXPECT_EQ(process.line(), "") << "one line and no more";
    }
}

TEST_F(Serve, the_access_log_tells_requests_and_no_secrets) {
    const auto log = directory.path() / "access.log";
    ServerProcess process(command({"serve", "--access-log", log.string()}));
    ASSERT_EQ(ServerProcess(command({"seed", "--password", "Halvane-demo-1"})).end(), 0);
    const std::string url = urlOf(process);
    const HttpProbe probe(url);
    const auto login = probe.postJson("/api/client/login", R"({"username":"chen.xiao","password":"Halvane-demo-1"})");
    const auto token = dataField(login.body, "token");
    const auto offer = probe.postJson("/papi/admin/create_ad_cert", R"({"username":"chen.xiao","password":"Halvane-demo-1"})", token).body;
    const auto path = dataField(offer, "download_url").substr(url.size());
    const auto size = probe.request("GET", path).body.size();
    probe.get("/api/client/user/work_address/1001?work_address=dalian", token);
    probe.get("/a%0a2000-01-01T00:00:00Z%20POST", token);
    probe.exchange("BREW\r\n\r\n");
    ASSERT_EQ(process.end(SIGTERM), 0);

    std::vector<std::string> lines;
    for (const auto& line : util::split(contentOf(log), '\n')) {
        if (line.empty()) continue;
        const auto words = util::split(line, ' ');
        ASSERT_EQ(words.size(), 6U) << line;
        EXPECT_EQ(words[0].size(), 20U) << line;
        EXPECT_TRUE(words[5].ends_with("ms")) << line;
        lines.push_back(words[1] + " " + words[2] + " " + words[3] + " " + words[4]);
    }
    ASSERT_EQ(lines.size(), 6U) << contentOf(log);
    EXPECT_EQ(lines[0], "POST /api/client/login 200 " + std::to_string(login.body.size()));
    EXPECT_EQ(lines[2], "GET /static/ad_cert/<redacted>/chen.xiao.pfx 200 " + std::to_string(size));
    EXPECT_TRUE(lines[3].starts_with("GET /api/client/user/work_address/1001 200 "));
    EXPECT_TRUE(lines[4].starts_with("GET /a?2000-01-01T00:00:00Z?POST 404 "));
    EXPECT_TRUE(lines[5].starts_with("- - 400 ")) << lines[5];
    for (const auto& secret : {token, util::split(path, '/').at(3), dataField(offer, "ad_cert_password"), std::string("Halvane-demo-1")}) {
        EXPECT_EQ(contentOf(log).find(secret), std::string::npos) << secret;
    }
    EXPECT_EQ(std::filesystem::status(log).permissions(), std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST_F(Serve, what_keeps_it_from_serving_is_said) {
    ServerProcess first(command({"serve"}));
    const std::string url = urlOf(first);
    const auto pem = directory.path() / "broken.pem";
    std::ofstream(pem) << "no certificate";
    const std::tuple<const char*, std::vector<std::string>, const char*> rows[] = {
        {"port taken", {"serve", "--port", url.substr(url.rfind(':') + 1)}, "listen on 127.0.0.1:"},
        {"not its address", {"serve", "--host", "192.0.2.1"}, "listen on 192.0.2.1:"},
        {"broken certificate", {"serve", "--cert", pem.string(), "--key", pem.string()}, "certificate or key cannot be read"},
        {"no place for the log", {"serve", "--access-log", "/nowhere/log"}, "cannot write the access log /nowhere/log"},
    };
    for (const auto& [name, words, reason] : rows) {
        SCOPED_TRACE(name);
        const auto messages = directory.path() / "messages";
        ServerProcess second(command(words), messages.string());
        EXPECT_EQ(second.line(), "");
        EXPECT_EQ(second.end(), 1);
        EXPECT_NE(contentOf(messages).find(reason), std::string::npos) << contentOf(messages);
        std::filesystem::remove(messages);
    }
}

TEST_F(Serve, speaks_https_with_a_certificate_of_ones_own) {
    const HandClock time;
    const auto now = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
    const auto key = server::makeKey();
    auto certificate = server::CertificateBuilder("127.0.0.1", *key, now - std::chrono::hours(1), now + std::chrono::hours(1)).sign(*key);
    const server::BioPtr keyFile(BIO_new_file((directory.path() / "key.pem").c_str(), "w"));
    const server::BioPtr certificateFile(BIO_new_file((directory.path() / "cert.pem").c_str(), "w"));
    PEM_write_bio_PrivateKey(keyFile.get(), key.get(), nullptr, nullptr, 0, nullptr, nullptr);
    PEM_write_bio_X509(certificateFile.get(), certificate.get());
    BIO_flush(keyFile.get());
    BIO_flush(certificateFile.get());

    server::Company company(directory.path() / "data", time.clock());
    server::CompanyServer server(company, {.tls = server::HttpServer::Tls{directory.path() / "cert.pem", directory.path() / "key.pem"},
                                           .publicUrl = "https://it.example.com"});
    const auto url = server.start();
    ASSERT_TRUE(url) << url.error().description;
    EXPECT_TRUE(url->starts_with("https://127.0.0.1:"));

    const std::unique_ptr<SSL_CTX, void (*)(SSL_CTX*)> context(SSL_CTX_new(TLS_client_method()), SSL_CTX_free);
    X509_STORE_add_cert(SSL_CTX_get_cert_store(context.get()), certificate.get());
    SSL_CTX_set_verify(context.get(), SSL_VERIFY_PEER, nullptr);
    const server::BioPtr connection(BIO_new_ssl_connect(context.get()));
    BIO_set_conn_hostname(connection.get(), url->substr(std::string_view("https://").size()).c_str());
    constexpr std::string_view kRequest = "GET /updatepwd/index HTTP/1.1\r\nHost: x\r\nConnection: close\r\n\r\n";
    ASSERT_EQ(BIO_write(connection.get(), kRequest.data(), static_cast<int>(kRequest.size())), static_cast<int>(kRequest.size()));
    std::string received;
    char buffer[4096];
    for (int count = 0; (count = BIO_read(connection.get(), buffer, sizeof(buffer))) > 0;)
        received.append(buffer, static_cast<std::size_t>(count));
    EXPECT_EQ(HttpProbe::parse(received).status, 200);

    // What is no TLS must not end the server either.
    HttpProbe(*url).exchange("GET / HTTP/1.1\r\n\r\n", HttpProbe::Sender::Ends);
    HttpProbe(*url).sendAndLeave("\x16\x03\x01\xff\xff");
    server.stop();
}

TEST_F(Serve, files_are_offered_under_the_public_address) {
    ASSERT_EQ(ServerProcess(command({"seed", "--password", "Halvane-demo-1"})).end(), 0);
    ServerProcess process(command({"serve", "--public-url", "https://it.example.com/halvane/"}));
    const HttpProbe probe(urlOf(process));
    const std::string who = R"({"username":"chen.xiao","password":"Halvane-demo-1"})";
    EXPECT_EQ(dataField(probe.postJson("/api/client/login", who).body, "header_img"),
              "https://it.example.com/halvane/static/avatar/1001.svg");
    EXPECT_TRUE(dataField(probe.postJson("/papi/admin/create_ad_cert", who).body, "download_url")
                    .starts_with("https://it.example.com/halvane/static/ad_cert/"));
    EXPECT_EQ(process.end(SIGTERM), 0);
}

}  // namespace
}  // namespace halvane::test
