#include "request/SecurityPolicy.h"

#include "util/Text.h"
#include "util/Url.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace halvane::request {

namespace {

/// In any case of letters, or "HTTPS:" would lead past the pins.
bool beginsWithHttps(std::string_view url) {
    constexpr std::string_view kHttps = "https";
    return util::lowercasedAscii(url.substr(0, kHttps.size())) == kHttps;
}

std::string rootDomainOf(const std::string& host) {
    const auto last = host.rfind('.');
    const auto before = last == std::string::npos || last == 0 ? std::string::npos : host.rfind('.', last - 1);
    return before == std::string::npos ? host : host.substr(before + 1);
}

}  // namespace

std::string SecurityPolicy::xm_rootDomainNameFromURL(const std::string& url) {
    if (const auto origin = util::originOf(url)) return rootDomainOf(origin->host);
    // What does not parse still names a host: a pin that is not taken would leave it open.
    const std::string_view host = util::hostTextOf(url);
    return rootDomainOf(util::lowercasedAscii(host.substr(0, host.find(':'))));
}

bool SecurityPolicy::isPinnedLocked(const std::string& rootDomain) const {
    return !rootDomain.empty() && std::ranges::find(sslPinningHosts_, rootDomain) != sslPinningHosts_.end();
}

void SecurityPolicy::addSSLPinningURL(const std::string& url) {
    if (!beginsWithHttps(url)) return;
    std::string domain = xm_rootDomainNameFromURL(url);
    const std::lock_guard lock(mutex_);
    if (!domain.empty() && !isPinnedLocked(domain)) sslPinningHosts_.push_back(std::move(domain));
}

void SecurityPolicy::addSSLPinningCert(util::Bytes certificate) {
    const std::lock_guard lock(mutex_);
    pinnedCertificates_.insert(std::move(certificate));
}

void SecurityPolicy::setClientIdentity(platform::ClientIdentity identity) {
    const std::lock_guard lock(mutex_);
    identity_ = std::move(identity);
}

bool SecurityPolicy::xm_shouldSSLPinningWithURL(const std::string& url) const {
    {
        const std::lock_guard lock(mutex_);
        if (sslPinningHosts_.empty()) return false;
    }
    if (!beginsWithHttps(url)) return false;
    const std::string domain = xm_rootDomainNameFromURL(url);
    const std::lock_guard lock(mutex_);
    return isPinnedLocked(domain);
}

bool SecurityPolicy::evaluateServerTrust(const platform::ServerTrust& trust, Session session) const {
    std::vector<util::Bytes> pinned;
    {
        const std::lock_guard lock(mutex_);
        if (session == Session::Ordinary && !isPinnedLocked(rootDomainOf(trust.host))) return trust.trustedBySystem;
        pinned.assign(pinnedCertificates_.begin(), pinnedCertificates_.end());
    }
    return !pinned.empty() && trust.isValidTowards(pinned);
}

std::optional<platform::ClientIdentity> SecurityPolicy::identityFor(const std::string& host) const {
    const std::lock_guard lock(mutex_);
    return isPinnedLocked(rootDomainOf(host)) ? identity_ : std::nullopt;
}

}  // namespace halvane::request
