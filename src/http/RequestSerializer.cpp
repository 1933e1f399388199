#include "http/RequestSerializer.h"

#include "http/FormEncoding.h"
#include "util/Json.h"

#include <algorithm>
#include <cmath>

namespace halvane::http {

namespace {

bool carriesParametersInUrl(const std::string& method) { return method == "GET" || method == "HEAD" || method == "DELETE"; }

/// What no encoding has a form for.
bool holdsUnwritable(const util::Value& value) {
    if (const auto* list = value.list()) return std::ranges::any_of(*list, holdsUnwritable);
    if (const auto* real = value.real()) return !std::isfinite(*real);
    if (const auto* date = value.date()) return !util::Json::dateText(*date);
    const auto* members = value.dictionary();
    return members != nullptr && std::ranges::any_of(*members, [](const auto& member) { return holdsUnwritable(member.value); });
}

util::Error unwritableError() { return util::dataError("a parameter is a number that is not finite, or a date beyond the calendar"); }

/// In front of a fragment, behind a query that is there already.
void addQuery(std::string& url, const std::string& query) {
    if (query.empty()) return;
    const std::size_t fragment = std::min(url.find('#'), url.size());
    const std::size_t question = url.find('?');
    const bool hasQuery = question < fragment;
    url.insert(fragment, (hasQuery ? "&" : "?") + query);
}

}  // namespace

util::Result<platform::HttpRequest> RequestSerializer::request(const std::string& method, const std::string& url,
                                                               const std::optional<util::Dictionary>& parameters) const {
    if (parameters && holdsUnwritable(*parameters)) return unwritableError();
    platform::HttpRequest request{.method = method, .url = url, .headers = headers_, .timeout = timeout_};
    if (carriesParametersInUrl(method)) {
        if (parameters) addQuery(request.url, formEncoded(*parameters));
    } else if (const auto encoded = encode(parameters, request); !encoded) {
        return encoded.error();
    }
    return request;
}

util::Result<platform::HttpRequest> RequestSerializer::multipartFormRequest(
    const std::string& method, const std::string& url, const std::optional<util::Dictionary>& parameters, MultipartFormData form,
    const std::function<void(MultipartFormData&)>& constructBody) const {
    if (parameters && holdsUnwritable(*parameters)) return unwritableError();
    auto made = request(method, url, std::nullopt);
    if (!made) return made;
    if (parameters) {
        for (auto& [field, value] : queryPairs(*parameters)) form.appendPartWithFormData(value.value_or(""), field);
    }
    constructBody(form);
    if (form.empty()) return made;
    made->headers.set("Content-Type", form.contentType());
    made->body.clear();
    made->bodyStream = std::move(form).finish();
    return made;
}

void RequestSerializer::setContentTypeWhereNoneIs(platform::HttpRequest& request, const char* type) {
    if (request.headers.find("Content-Type") == nullptr) request.headers.set("Content-Type", type);
}

}  // namespace halvane::http
