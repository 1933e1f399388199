#pragma once

#include "platform/HttpTls.h"

#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace halvane::request {

/// Which hosts are pinned, by which certificates, and what we prove ourselves with towards them. Any thread; both
/// sessions of an engine ask it on their network threads.
class SecurityPolicy {
public:
    /// "a.b.c" belongs to "b.c". Only addresses that begin with "https" are taken.
    void addSSLPinningURL(const std::string& url);
    void addSSLPinningCert(util::Bytes certificate);
    void setClientIdentity(platform::ClientIdentity identity);

    [[nodiscard]] bool xm_shouldSSLPinningWithURL(const std::string& url) const;
    /// The last two labels of the URL's host, or the host where there are fewer; empty for an address without one. A public
    /// suffix of two labels is not recognised.
    [[nodiscard]] static std::string xm_rootDomainNameFromURL(const std::string& url);

    enum class Session : std::uint8_t { Ordinary, Pinned };
    /// In the pinned session every server has to show a pinned certificate. In the ordinary one the system decides, except
    /// for a pinned host to which a redirect led: the pins hold there too.
    [[nodiscard]] bool evaluateServerTrust(const platform::ServerTrust& trust, Session session) const;
    /// The identity, for pinned hosts only: a redirect may lead the pinned session elsewhere.
    [[nodiscard]] std::optional<platform::ClientIdentity> identityFor(const std::string& host) const;

private:
    [[nodiscard]] bool isPinnedLocked(const std::string& rootDomain) const;

    mutable std::mutex mutex_;  // guards all below
    std::vector<std::string> sslPinningHosts_;
    std::set<util::Bytes> pinnedCertificates_;
    std::optional<platform::ClientIdentity> identity_;
};

}  // namespace halvane::request
