#include "support/TlsLoopback.h"

#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>

#include <pthread.h>
#include <sys/socket.h>
#include <array>
#include <csignal>
#include <stdexcept>

namespace halvane::test {

struct TlsLoopback::Context {
    ~Context() { SSL_CTX_free(ssl); }
    SSL_CTX* ssl = SSL_CTX_new(TLS_server_method());
};

namespace {

class TlsChannel final : public LoopbackChannel {
public:
    explicit TlsChannel(SSL* ssl) : ssl_(ssl) {}
    ~TlsChannel() override { SSL_free(ssl_); }
    TlsChannel(const TlsChannel&) = delete;
    TlsChannel& operator=(const TlsChannel&) = delete;

    std::string read() override {
        std::array<char, 16384> buffer{};
        const int count = SSL_read(ssl_, buffer.data(), static_cast<int>(buffer.size()));
        ERR_clear_error();
        return count > 0 ? std::string(buffer.data(), static_cast<std::size_t>(count)) : std::string();
    }
    bool write(std::string_view bytes) override {
        const bool written = bytes.empty() || SSL_write(ssl_, bytes.data(), static_cast<int>(bytes.size())) > 0;
        ERR_clear_error();
        return written;
    }
    void close() override {
        SSL_shutdown(ssl_);
        ERR_clear_error();
    }

private:
    SSL* ssl_;
};

X509* certificateFrom(const std::string& pem) {
    BIO* bio = BIO_new_mem_buf(pem.data(), -1);
    X509* certificate = PEM_read_bio_X509(bio, nullptr, nullptr, nullptr);
    BIO_free(bio);
    if (certificate == nullptr) throw std::runtime_error("no certificate in a fixture");
    return certificate;
}

std::string commonNameOf(const SSL* ssl) {
    X509* certificate = SSL_get1_peer_certificate(ssl);
    if (certificate == nullptr) return {};
    std::array<char, 256> name{};
    X509_NAME_get_text_by_NID(X509_get_subject_name(certificate), NID_commonName, name.data(), static_cast<int>(name.size()));
    X509_free(certificate);
    return name.data();
}

}  // namespace

TlsLoopback::TlsLoopback(Options options) : context_(std::make_unique<Context>()) {
    SSL_CTX* ssl = context_->ssl;
    X509* certificate = certificateFrom(options.identity.certificate);
    SSL_CTX_use_certificate(ssl, certificate);
    X509_free(certificate);
    if (!options.intermediate.empty()) SSL_CTX_add0_chain_cert(ssl, certificateFrom(options.intermediate));
    BIO* keyText = BIO_new_mem_buf(options.identity.key.data(), -1);
    EVP_PKEY* key = PEM_read_bio_PrivateKey(keyText, nullptr, nullptr, nullptr);
    SSL_CTX_use_PrivateKey(ssl, key);
    EVP_PKEY_free(key);
    BIO_free(keyText);
    if (options.highestVersion != 0) {
        SSL_CTX_set_security_level(ssl, 0);
        SSL_CTX_set_min_proto_version(ssl, TLS1_VERSION);
        SSL_CTX_set_max_proto_version(ssl, options.highestVersion);
    }
    if (options.client == Client::NotAsked) return;
    X509* authority = certificateFrom(options.clientAuthority);
    X509_STORE_add_cert(SSL_CTX_get_cert_store(ssl), authority);
    SSL_CTX_add_client_CA(ssl, authority);
    X509_free(authority);
    SSL_CTX_set_verify(ssl, SSL_VERIFY_PEER | (options.client == Client::Required ? SSL_VERIFY_FAIL_IF_NO_PEER_CERT : 0), nullptr);
}

TlsLoopback::~TlsLoopback() = default;

LoopbackServer::ChannelMaker TlsLoopback::maker() {
    return [this](int descriptor) -> std::unique_ptr<LoopbackChannel> {
        // OpenSSL writes to closed sockets without asking for silence.
        sigset_t pipe;
        sigemptyset(&pipe);
        sigaddset(&pipe, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &pipe, nullptr);
        SSL* ssl = SSL_new(context_->ssl);
        SSL_set_fd(ssl, descriptor);
        if (SSL_accept(ssl) != 1) {
            ERR_clear_error();
            SSL_free(ssl);
            // Closing over unread bytes would reset the connection, and the alert could be lost with it.
            ::shutdown(descriptor, SHUT_WR);
            std::array<char, 4096> unread{};
            while (::recv(descriptor, unread.data(), unread.size(), 0) > 0) continue;
            return nullptr;
        }
        const std::lock_guard lock(mutex_);
        clients_.push_back(commonNameOf(ssl));
        return std::make_unique<TlsChannel>(ssl);
    };
}

std::vector<std::string> TlsLoopback::clients() const {
    const std::lock_guard lock(mutex_);
    return clients_;
}

}  // namespace halvane::test
