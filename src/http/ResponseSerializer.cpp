#include "http/ResponseSerializer.h"

#include <fmt/format.h>

#include <utility>

namespace halvane::http {

namespace {

util::Error refused(util::UrlError code, std::string description, util::Bytes body) {
    util::Error error = util::urlError(code, std::move(description));
    error.body = std::move(body);
    return error;
}

}  // namespace

bool ResponseSerializer::accepts(const platform::HttpResponse& response, const util::Bytes& body) const {
    if (!response.isSuccess()) return false;
    return body.empty() || acceptableContentTypes_.empty() || acceptableContentTypes_.contains(response.mimeType());
}

std::optional<util::Error> ResponseSerializer::refusalOf(const platform::HttpResponse& response, util::Bytes body) const {
    using util::UrlError;
    if (!response.isSuccess()) {
        return refused(UrlError::BadServerResponse, fmt::format("the server answered with status {}", response.status), std::move(body));
    }
    if (accepts(response, body)) return std::nullopt;
    const std::string type = response.mimeType();
    return refused(UrlError::CannotDecode, fmt::format("the server answered with content of type \"{}\"", type), std::move(body));
}

util::Result<std::optional<ResponseObject>> ResponseSerializer::decode(const platform::HttpResponse& response, util::Bytes body) const {
    if (!accepts(response, body)) return *refusalOf(response, std::move(body));
    auto decoded = decodeBody(response, body);
    if (!decoded) return refused(util::UrlError::CannotDecode, decoded.error().description, std::move(body));
    return decoded;
}

}  // namespace halvane::http
