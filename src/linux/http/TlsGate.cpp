#include "linux/http/TlsGate.h"

#include "linux/http/ClientCertificate.h"
#include "util/Text.h"
#include "util/Url.h"

#include <openssl/bio.h>
#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <arpa/inet.h>
#include <array>
#include <cstdlib>
#include <utility>

namespace halvane::linux_http {

/// One connection's share of the gate. Owned by the connection's SSL_CTX: a connection may outlive the
/// transfer that opened it.
struct TlsConnection {
    const TlsGate* gate = nullptr;
    std::string host;
    std::shared_ptr<TlsReport> report;

    static int slot();
    static TlsConnection* of(const SSL* ssl);
    static int judgeServer(X509_STORE_CTX* chain, void* self);
    static int offerCertificate(SSL* ssl, X509** certificate, EVP_PKEY** key);
    static void noteAlert(const SSL* ssl, int where, int value);

    bool accepts(X509_STORE_CTX* chain, const SSL* ssl) const;
    [[nodiscard]] bool asksAnotherHost(const SSL* ssl) const;
};

namespace {

// An authority may stand anywhere in the chain: the company's own, or a server's certificate by itself.
constexpr unsigned long kChainFlags = X509_V_FLAG_TRUSTED_FIRST | X509_V_FLAG_PARTIAL_CHAIN;

bool isAddress(const std::string& host) {
    std::array<unsigned char, sizeof(in6_addr)> bytes{};
    return inet_pton(AF_INET, host.c_str(), bytes.data()) == 1 || inet_pton(AF_INET6, host.c_str(), bytes.data()) == 1;
}

std::vector<util::Bytes> sentChain(X509_STORE_CTX* chain) {
    std::vector<util::Bytes> result;
    const STACK_OF(X509)* sent = X509_STORE_CTX_get0_untrusted(chain);
    for (int i = 0; i < sk_X509_num(sent); ++i) {
        unsigned char* der = nullptr;
        const int length = i2d_X509(sk_X509_value(sent, i), &der);
        if (length > 0) result.emplace_back(reinterpret_cast<const char*>(der), static_cast<std::size_t>(length));
        OPENSSL_free(der);
    }
    return result;
}

/// Has the chain judged for `host` alone. False when memory runs out: then nothing may be judged.
bool expectHost(X509_STORE_CTX* chain, const std::string& host) {
    X509_VERIFY_PARAM* rules = X509_STORE_CTX_get0_param(chain);
    X509_VERIFY_PARAM_set_hostflags(rules, X509_CHECK_FLAG_NO_PARTIAL_WILDCARDS | X509_CHECK_FLAG_NEVER_CHECK_SUBJECT);
    return (isAddress(host) ? X509_VERIFY_PARAM_set1_ip_asc(rules, host.c_str())
                            : X509_VERIFY_PARAM_set1_host(rules, host.c_str(), host.size())) == 1;
}

/// Whether the chain leads to a known authority, and the certificate is for the host that is expected.
bool isTrusted(X509_STORE_CTX* chain) {
    // A failure that the policy overrules must not stay in the queue, where it would look like one of the handshake's.
    ERR_set_mark();
    const bool trusted = X509_verify_cert(chain) == 1;
    ERR_pop_to_mark();
    return trusted;
}

/// Whether the environment, from which libcurl takes its proxies, names one of that host.
bool isProxy(const std::string& host) {
    for (const char* variable : {"https_proxy", "HTTPS_PROXY", "http_proxy", "all_proxy", "ALL_PROXY"}) {
        const char* proxy = std::getenv(variable);
        const auto origin = proxy == nullptr ? std::nullopt : util::originOf(proxy);
        if (origin && origin->host == host) return true;
    }
    return false;
}

void addAuthorities(X509_STORE* store, const std::string& pem) {
    ERR_set_mark();
    const std::unique_ptr<BIO, decltype(&BIO_free)> text(BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size())), &BIO_free);
    while (X509* certificate = text ? PEM_read_bio_X509_AUX(text.get(), nullptr, nullptr, nullptr) : nullptr) {
        X509_STORE_add_cert(store, certificate);
        X509_free(certificate);
    }
    ERR_pop_to_mark();
}

using Certificate = std::unique_ptr<X509, decltype(&X509_free)>;

/// The chain judged once more with `anchors` as the only authorities, for the same host and by the same rules.
bool isValidTowards(X509_STORE_CTX* chain, const std::vector<util::Bytes>& anchors) {
    ERR_set_mark();
    const std::unique_ptr<X509_STORE, decltype(&X509_STORE_free)> store(X509_STORE_new(), &X509_STORE_free);
    const std::unique_ptr<X509_STORE_CTX, decltype(&X509_STORE_CTX_free)> again(X509_STORE_CTX_new(), &X509_STORE_CTX_free);
    bool valid = false;
    if (store && again) {
        for (const util::Bytes& der : anchors) {
            const auto* bytes = reinterpret_cast<const unsigned char*>(der.data());
            const Certificate anchor(d2i_X509(nullptr, &bytes, static_cast<long>(der.size())), &X509_free);
            if (anchor) X509_STORE_add_cert(store.get(), anchor.get());
        }
        X509_STORE_CTX_init(again.get(), store.get(), X509_STORE_CTX_get0_cert(chain), X509_STORE_CTX_get0_untrusted(chain));
        X509_VERIFY_PARAM* rules = X509_STORE_CTX_get0_param(again.get());
        X509_VERIFY_PARAM_set1(rules, X509_STORE_CTX_get0_param(chain));
        X509_VERIFY_PARAM_set_flags(rules, kChainFlags);
        valid = X509_verify_cert(again.get()) == 1;
        X509_STORE_CTX_set_error(chain, X509_STORE_CTX_get_error(again.get()));
    }
    ERR_pop_to_mark();
    return valid;
}

void freeConnection(void* /*parent*/, void* connection, CRYPTO_EX_DATA* /*data*/, int /*index*/, long /*number*/, void* /*argument*/) {
    delete static_cast<TlsConnection*>(connection);
}

}  // namespace

int TlsConnection::slot() {
    static const int index = SSL_CTX_get_ex_new_index(0, nullptr, nullptr, nullptr, freeConnection);
    return index;
}

TlsConnection* TlsConnection::of(const SSL* ssl) { return static_cast<TlsConnection*>(SSL_CTX_get_ex_data(SSL_get_SSL_CTX(ssl), slot())); }

bool TlsConnection::asksAnotherHost(const SSL* ssl) const {
    const char* asked = SSL_get_servername(ssl, TLSEXT_NAMETYPE_host_name);
    return asked != nullptr && util::lowercasedAscii(asked) != host;
}

bool TlsConnection::accepts(X509_STORE_CTX* chain, const SSL* ssl) const {
    if (asksAnotherHost(ssl)) {
        // A proxy is no server of ours: the system judges it, the policy is not asked.
        const std::string other = util::lowercasedAscii(SSL_get_servername(ssl, TLSEXT_NAMETYPE_host_name));
        return isProxy(other) && expectHost(chain, other) && isTrusted(chain);
    }
    if (!expectHost(chain, host)) return false;
    platform::ServerTrust trust{host, sentChain(chain), isTrusted(chain), {}};
    trust.isValidTowards = [chain](const std::vector<util::Bytes>& anchors) { return isValidTowards(chain, anchors); };
    const auto& evaluate = gate->policy_.evaluateServerTrust;
    return evaluate ? evaluate(trust) : trust.trustedBySystem;
}

int TlsConnection::judgeServer(X509_STORE_CTX* chain, void* self) {
    auto& connection = *static_cast<TlsConnection*>(self);
    const auto* ssl = static_cast<const SSL*>(X509_STORE_CTX_get_ex_data(chain, SSL_get_ex_data_X509_STORE_CTX_idx()));
    if (connection.accepts(chain, ssl)) {
        X509_STORE_CTX_set_error(chain, X509_V_OK);
        return 1;
    }
    if (X509_STORE_CTX_get_error(chain) == X509_V_OK) X509_STORE_CTX_set_error(chain, X509_V_ERR_APPLICATION_VERIFICATION);
    connection.report->refusal = X509_verify_cert_error_string(X509_STORE_CTX_get_error(chain));
    return 0;
}

int TlsConnection::offerCertificate(SSL* ssl, X509** certificate, EVP_PKEY** key) {
    const TlsConnection* connection = of(ssl);
    const auto& ask = connection->gate->policy_.clientIdentity;
    if (!ask || connection->asksAnotherHost(ssl)) return 0;
    const auto identity = ask(connection->host);
    if (!identity) return 0;
    const ClientCertificate read = readClientCertificate(*identity);
    *certificate = read.certificate;
    *key = read.key;
    return read.certificate != nullptr ? 1 : 0;
}

void TlsConnection::noteAlert(const SSL* ssl, int where, int value) {
    constexpr int kFatal = SSL3_AL_FATAL << 8;
    if ((where & SSL_CB_READ_ALERT) == SSL_CB_READ_ALERT && (value & 0xFF00) == kFatal) of(ssl)->report->alertReceived = true;
}

TlsGate::TlsGate(platform::HttpTlsPolicy policy) : policy_(std::move(policy)) {}

void TlsGate::FreeStore::operator()(X509_STORE* store) const { X509_STORE_free(store); }

X509_STORE* TlsGate::authorities() const {
    if (authorities_) return authorities_.get();
    authorities_.reset(X509_STORE_new());
    if (!authorities_) return nullptr;
    ERR_set_mark();
    X509_STORE_set_default_paths(authorities_.get());
    ERR_pop_to_mark();
    X509_STORE_set_flags(authorities_.get(), kChainFlags);
    addAuthorities(authorities_.get(), policy_.additionalAuthorities);
    return authorities_.get();
}

bool TlsGate::prepare(SSL_CTX* context, std::string host, std::shared_ptr<TlsReport> report) const {
    X509_STORE* store = authorities();
    if (store == nullptr) return false;
    auto connection = std::make_unique<TlsConnection>(TlsConnection{this, std::move(host), std::move(report)});
    if (SSL_CTX_set_ex_data(context, TlsConnection::slot(), connection.get()) != 1) return false;
    TlsConnection* kept = connection.release();
    SSL_CTX_set1_cert_store(context, store);
    SSL_CTX_set_cert_verify_callback(context, &TlsConnection::judgeServer, kept);
    SSL_CTX_set_client_cert_cb(context, &TlsConnection::offerCertificate);
    SSL_CTX_set_info_callback(context, &TlsConnection::noteAlert);
    // A new handshake on a connection that was judged would exchange the server's certificate unseen.
    SSL_CTX_set_options(context, SSL_OP_NO_RENEGOTIATION);
    return true;
}

}  // namespace halvane::linux_http
