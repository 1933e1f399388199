#pragma once

#include "util/Bytes.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace halvane::platform {

/// What a server proved of itself in a TLS handshake.
struct ServerTrust {
    std::string host;                ///< the name that was asked for
    std::vector<util::Bytes> chain;  ///< DER certificates as sent, the server's own first
    bool trustedBySystem = false;    ///< the chain is valid for `host` towards the system's authorities
    /// Whether the chain is valid for `host` towards these DER certificates alone: it leads to one of them, be it an
    /// authority or the server's own. For the time of the call that hands it over.
    std::function<bool(const std::vector<util::Bytes>& anchors)> isValidTowards;
};

/// A client's certificate with its key.
struct ClientIdentity {
    util::Bytes pkcs12;
    std::optional<std::string> passphrase;
};

/// A session's say in its TLS connections. Called on the session's network thread, within the
/// handshake, before any byte of a request is sent; an open connection is not asked about again.
struct HttpTlsPolicy {
    /// Whether to go on. Absent: `trustedBySystem` decides.
    std::function<bool(const ServerTrust&)> evaluateServerTrust;
    /// The identity to offer where the server asks for one. Absent, or answering nothing: none.
    std::function<std::optional<ClientIdentity>(const std::string& host)> clientIdentity;
    /// Authorities to trust besides the system's, PEM. For the company's own and for tests.
    std::string additionalAuthorities;
};

}  // namespace halvane::platform
