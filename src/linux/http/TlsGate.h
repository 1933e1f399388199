#pragma once

#include "platform/HttpTls.h"

#include <memory>
#include <string>

using SSL_CTX = struct ssl_ctx_st;
using X509_STORE = struct x509_store_st;

namespace halvane::linux_http {

/// What became of a handshake, for the description of a failure.
struct TlsReport {
    std::string refusal;         ///< why the server's certificate was not accepted; empty when it was
    bool alertReceived = false;  ///< the server ended the connection with a fatal alert
};

/// A session's TLS policy, put into the context of each of its connections. The server's certificate,
/// its host name included, is judged inside the handshake, so that a refused server receives no byte
/// of a request. Network thread; outlives the connections.
class TlsGate {
public:
    explicit TlsGate(platform::HttpTlsPolicy policy);

    /// Readies the context of a connection to `host` that is about to be opened; `report` receives what
    /// happens on it. False when memory ran out.
    bool prepare(SSL_CTX* context, std::string host, std::shared_ptr<TlsReport> report) const;

private:
    friend struct TlsConnection;

    struct FreeStore {
        void operator()(X509_STORE* store) const;
    };

    /// The authorities of the system and of the policy: read once, on the first TLS connection.
    X509_STORE* authorities() const;

    platform::HttpTlsPolicy policy_;
    mutable std::unique_ptr<X509_STORE, FreeStore> authorities_;
};

}  // namespace halvane::linux_http
