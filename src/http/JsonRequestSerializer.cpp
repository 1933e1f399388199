#include "http/JsonRequestSerializer.h"

#include "util/Json.h"

namespace halvane::http {

util::Result<void> JsonRequestSerializer::encode(const util::Dictionary& parameters, platform::HttpRequest& request) const {
    if (request.headers.find("Content-Type") == nullptr) request.headers.set("Content-Type", "application/json");
    request.body = util::Json::encode(parameters);
    return {};
}

}  // namespace halvane::http
