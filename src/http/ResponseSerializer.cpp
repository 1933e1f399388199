#include "http/ResponseSerializer.h"

#include <fmt/format.h>

namespace halvane::http {

util::Result<util::Value> ResponseSerializer::decode(const platform::HttpResponse& response, const util::Bytes& body) const {
    if (!response.isSuccess()) {
        return util::urlError(util::UrlError::BadServerResponse, fmt::format("the server answered with status {}", response.status));
    }
    const std::string type = response.mimeType();
    if (!body.empty() && !acceptableContentTypes_.empty() && !acceptableContentTypes_.contains(type)) {
        return util::urlError(util::UrlError::CannotDecode, fmt::format("the server answered with content of type \"{}\"", type));
    }
    auto decoded = decodeBody(response, body);
    if (!decoded) return util::urlError(util::UrlError::CannotDecode, decoded.error().description);
    return decoded;
}

}  // namespace halvane::http
