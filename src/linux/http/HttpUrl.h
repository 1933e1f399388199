#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace halvane::linux_http {

/// Where a URL points to; `host` in lower case, IPv6 addresses without brackets.
struct UrlOrigin {
    std::string scheme;
    std::string host;
    std::string port;  ///< the scheme's own where the URL names none

    [[nodiscard]] bool isDefaultPort() const { return port == (scheme == "https" ? "443" : "80"); }
    friend bool operator==(const UrlOrigin&, const UrlOrigin&) = default;
};

/// Whether the URL can be sent as it stands: absolute, http or https, every character one that a URL may
/// contain. What host and port are worth shows when it is sent.
bool isSendableUrl(std::string_view url);

std::optional<UrlOrigin> originOf(const std::string& url);

/// Where `location`, as servers write it, leads from `base`. Absent unless that is http or https.
std::optional<std::string> resolvedUrl(const std::string& base, const std::string& location);

/// "host:port" for descriptions, or "the server". Never user information, path or query.
std::string hostForDisplay(const std::string& url);

}  // namespace halvane::linux_http
