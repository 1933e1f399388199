#pragma once

#include "support/LoopbackServer.h"
#include "support/TestAuthority.h"

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace halvane::test {

/// The TLS side of a loopback server: `LoopbackServer server(script, tls.maker())`. Keeps a record of the handshakes.
class TlsLoopback {
public:
    enum class Client { NotAsked, Asked, Required };
    struct Options {
        TestIdentity identity;
        std::string intermediate;  ///< PEM, sent behind the identity; none when empty
        Client client = Client::NotAsked;
        std::string clientAuthority;  ///< PEM
        int highestVersion = 0;       ///< as OpenSSL numbers them; 0 for its own. Old ones are made possible.
    };

    explicit TlsLoopback(Options options);
    ~TlsLoopback();
    TlsLoopback(const TlsLoopback&) = delete;
    TlsLoopback& operator=(const TlsLoopback&) = delete;

    [[nodiscard]] LoopbackServer::ChannelMaker maker();
    /// Common names of the clients whose handshakes ended well, "" for those without a certificate.
    [[nodiscard]] std::vector<std::string> clients() const;

private:
    struct Context;

    std::unique_ptr<Context> context_;
    mutable std::mutex mutex_;
    std::vector<std::string> clients_;
};

}  // namespace halvane::test
