#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace halvane::util {

/// Addresses of http and https. The door to libcurl's URL interface. Any thread.

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

/// Where `location`, as servers write it, leads from `base`: what may not stand in a URL is escaped. Absent unless that
/// is http or https.
std::optional<std::string> resolvedUrl(const std::string& base, const std::string& location);

/// `reference` seen from `base`, by RFC 3986. Absent when that cannot be sent: nothing is escaped.
std::optional<std::string> resolvedReference(const std::string& base, const std::string& reference);

/// Host and port as they stand in the text, without user information, also of an address that does not parse. A piece of
/// `url`; null where there is no "://".
std::string_view hostTextOf(std::string_view url);

/// `url` with a slash at the end of its path, when it has a path and its full text does not end in a slash.
std::string withDirectoryPath(const std::string& url);

/// The last component of the path, unescaped; empty where there is none, or none that could name a file.
std::string fileNameOfUrl(std::string_view url);

/// "host:port" for descriptions, or "the server". Never user information, path or query.
std::string hostForDisplay(const std::string& url);

}  // namespace halvane::util
