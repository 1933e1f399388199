#include "http/ResponseSerializer.h"

#include <fmt/format.h>

namespace halvane::http {

namespace {

util::Error refused(util::UrlError code, std::string description, const util::Bytes& body) {
    util::Error error = util::urlError(code, std::move(description));
    error.body = body;
    return error;
}

}  // namespace

std::optional<util::Error> ResponseSerializer::refusalOf(const platform::HttpResponse& response, const util::Bytes& body) const {
    using util::UrlError;
    if (!response.isSuccess()) {
        return refused(UrlError::BadServerResponse, fmt::format("the server answered with status {}", response.status), body);
    }
    if (body.empty() || acceptableContentTypes_.empty()) return std::nullopt;
    const std::string type = response.mimeType();
    if (acceptableContentTypes_.contains(type)) return std::nullopt;
    return refused(UrlError::CannotDecode, fmt::format("the server answered with content of type \"{}\"", type), body);
}

util::Result<std::optional<ResponseObject>> ResponseSerializer::decode(const platform::HttpResponse& response,
                                                                       const util::Bytes& body) const {
    if (auto refusal = refusalOf(response, body)) return *std::move(refusal);
    auto decoded = decodeBody(response, body);
    if (!decoded) return refused(util::UrlError::CannotDecode, decoded.error().description, body);
    return decoded;
}

}  // namespace halvane::http
