#include "linux/http/Redirect.h"

#include "util/Text.h"
#include "util/Url.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace halvane::linux_http {

namespace {

// Tokens travel under names of the caller's choice, so what may go on is listed, not what may not.
constexpr std::array<std::string_view, 6> kFieldsForAnyOrigin = {"accept",       "accept-encoding", "accept-language",
                                                                 "content-type", "cache-control",   "user-agent"};
constexpr std::array<const char*, 4> kFieldsOfBody = {"Content-Type", "Content-Encoding", "Content-Language", "Content-MD5"};

bool mayKeepSecrets(const std::string& from, const std::string& to) {
    const auto old = util::originOf(from);
    const auto next = util::originOf(to);
    if (!old || !next) return false;
    const bool upgraded = old->scheme == "http" && next->scheme == "https" && old->isDefaultPort() && next->isDefaultPort();
    return *old == *next || (upgraded && old->host == next->host);
}

void dropSecrets(platform::HttpHeaders& headers) {
    platform::HttpHeaders kept;
    for (const auto& [name, value] : headers.fields()) {
        if (std::ranges::find(kFieldsForAnyOrigin, util::lowercasedAscii(name)) != kFieldsForAnyOrigin.end()) kept.set(name, value);
    }
    headers = std::move(kept);
}

bool isSameScheme(const std::string& from, const std::optional<std::string>& to) {
    const auto old = util::originOf(from);
    const auto next = to ? util::originOf(*to) : std::nullopt;
    return old && next && old->scheme == next->scheme;
}

bool becomesGet(int status, const std::string& method) {
    if (status == 303) return method != "GET" && method != "HEAD";
    return (status == 301 || status == 302) && method == "POST";
}

}  // namespace

bool isRedirect(const platform::HttpResponse& response) {
    constexpr std::array kStatuses = {301, 302, 303, 307, 308};
    return std::ranges::find(kStatuses, response.status) != kStatuses.end() && response.headers.find("Location") != nullptr;
}

util::Result<void> applyRedirect(platform::HttpRequest& request, const platform::HttpResponse& response) {
    const auto target = util::resolvedUrl(request.url, *response.headers.find("Location"));
    if (request.redirects == platform::HttpRequest::Redirects::SameScheme && !isSameScheme(request.url, target))
        return util::urlError(util::UrlError::RedirectRefused, "The server redirected to an address of another scheme.");
    if (!target) return util::urlError(util::UrlError::BadUrl, "The server redirected to an address that is not http or https.");
    if (becomesGet(response.status, request.method)) {
        request.method = "GET";
        request.body.clear();
        request.bodyStream.reset();
        for (const char* name : kFieldsOfBody) request.headers.remove(name);
    } else if (request.bodyStream && !request.bodyStream->rewind()) {
        return util::urlError(util::UrlError::Unknown, "The server asked for the body again, which cannot be sent twice.");
    }
    if (!mayKeepSecrets(request.url, *target)) dropSecrets(request.headers);
    request.url = *target;
    return {};
}

}  // namespace halvane::linux_http
