#include "util/Url.h"

#include "util/Text.h"

#include <curl/curl.h>

#include <algorithm>
#include <memory>

namespace halvane::util {

namespace {

using UrlHandle = std::unique_ptr<CURLU, decltype(&curl_url_cleanup)>;

UrlHandle parsed(const std::string& url) {
    UrlHandle handle(curl_url(), &curl_url_cleanup);
    if (handle && curl_url_set(handle.get(), CURLUPART_URL, url.c_str(), 0) != CURLUE_OK) handle.reset();
    return handle;
}

std::string part(const UrlHandle& handle, CURLUPart which, unsigned int flags = 0) {
    char* text = nullptr;
    if (curl_url_get(handle.get(), which, &text, flags) != CURLUE_OK) return {};
    const std::unique_ptr<char, decltype(&curl_free)> owned(text, &curl_free);
    return text;
}

/// Whether it begins with a scheme of ours and the first letter of a host, which libcurl would look for further on.
bool namesWebHost(std::string_view url) {
    constexpr std::string_view kHttp = "http://";
    constexpr std::string_view kHttps = "https://";
    const std::string start = lowercasedAscii(url.substr(0, kHttps.size()));
    const std::size_t host = start.starts_with(kHttps) ? kHttps.size() : start.starts_with(kHttp) ? kHttp.size() : 0;
    return host != 0 && host < url.size() && std::string_view("/?#:@").find(url[host]) == std::string_view::npos;
}

std::optional<std::string> resolved(const std::string& base, const std::string& reference, unsigned int flags) {
    // libcurl would resolve against the fragment too.
    const UrlHandle handle = parsed(base.substr(0, base.find('#')));
    if (!handle) return std::nullopt;
    if (!reference.empty() && curl_url_set(handle.get(), CURLUPART_URL, reference.c_str(), flags) != CURLUE_OK) return std::nullopt;
    std::string url = part(handle, CURLUPART_URL);
    if (!isSendableUrl(url)) return std::nullopt;
    return url;
}

/// Positions in a URL's text; empty where it has no path.
struct PathSpan {
    std::size_t begin;
    std::size_t end;
};

PathSpan pathOf(std::string_view url) {
    const auto scheme = url.find("://");
    const std::size_t authority = scheme == std::string_view::npos ? 0 : scheme + 3;
    const std::size_t end = std::min(url.find_first_of("?#", authority), url.size());
    return {std::min(url.find('/', authority), end), end};
}

/// libcurl unescapes and maps such a name, so that it would lead elsewhere than it reads. (An address in brackets may name
/// its zone so.)
bool hasEscapedHost(std::string_view url) {
    const std::string_view host = hostTextOf(url);
    return !host.starts_with('[') && host.find('%') != std::string_view::npos;
}

bool isHexDigit(char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }

bool mayStandInUrl(char c) {
    constexpr std::string_view kNeverUnescaped = "\"<>\\^`{|}";
    return c > ' ' && c < '\x7f' && kNeverUnescaped.find(c) == std::string_view::npos;
}

}  // namespace

std::string_view hostTextOf(std::string_view url) {
    const auto scheme = url.find("://");
    if (scheme == std::string_view::npos) return {};
    const std::size_t start = scheme + 3;
    std::string_view host = url.substr(start, std::min(url.find_first_of("/?#", start), url.size()) - start);
    if (const auto user = host.rfind('@'); user != std::string_view::npos) host.remove_prefix(user + 1);
    return host;
}

bool isSendableUrl(std::string_view url) {
    if (!namesWebHost(url) || !std::ranges::all_of(url, mayStandInUrl) || hasEscapedHost(url)) return false;
    for (auto at = url.find('%'); at != std::string_view::npos; at = url.find('%', at + 1)) {
        if (at + 2 >= url.size() || !isHexDigit(url[at + 1]) || !isHexDigit(url[at + 2])) return false;
    }
    return true;
}

std::optional<UrlOrigin> originOf(const std::string& url) {
    const UrlHandle handle = parsed(url);
    if (!handle) return std::nullopt;
    UrlOrigin origin{part(handle, CURLUPART_SCHEME), lowercasedAscii(part(handle, CURLUPART_HOST)),
                     part(handle, CURLUPART_PORT, CURLU_DEFAULT_PORT)};
    if (origin.host.starts_with('[') && origin.host.ends_with(']')) origin.host = origin.host.substr(1, origin.host.size() - 2);
    if (origin.host.ends_with('.')) origin.host.pop_back();
    if (origin.host.empty()) return std::nullopt;
    return origin;
}

std::optional<std::string> resolvedUrl(const std::string& base, const std::string& location) {
    return resolved(base, location, CURLU_URLENCODE);
}

std::optional<std::string> resolvedReference(const std::string& base, const std::string& reference) {
    if (isSendableUrl(reference)) return reference;
    // libcurl takes these two for relative paths, and would lose the base's last component.
    if (reference.empty() || reference.front() == '#') {
        auto whole = resolved(base, "", 0);
        if (whole) *whole += reference;
        return whole && isSendableUrl(*whole) ? whole : std::nullopt;
    }
    return std::ranges::all_of(reference, mayStandInUrl) ? resolved(base, reference, 0) : std::nullopt;
}

std::string withDirectoryPath(const std::string& url) {
    const PathSpan path = pathOf(url);
    if (path.begin == path.end || url.ends_with('/')) return url;
    return url[path.end - 1] == '/' ? url : url.substr(0, path.end) + "/" + url.substr(path.end);
}

std::string fileNameOfUrl(std::string_view url) {
    const PathSpan span = pathOf(url);
    std::string_view path = url.substr(span.begin, span.end - span.begin);
    while (path.ends_with('/')) path.remove_suffix(1);
    return fileNameOf(percentDecoded(path));
}

std::string hostForDisplay(const std::string& url) {
    const auto origin = originOf(url);
    return origin ? origin->host + ":" + origin->port : "the server";
}

}  // namespace halvane::util
