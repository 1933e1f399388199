#include "http/JsonRequestSerializer.h"

#include "util/Json.h"

namespace halvane::http {

util::Result<void> JsonRequestSerializer::encode(const std::optional<util::Dictionary>& parameters, platform::HttpRequest& request) const {
    if (!parameters) return {};
    setContentTypeWhereNoneIs(request, "application/json");
    request.body = util::Json::encode(*parameters);
    return {};
}

}  // namespace halvane::http
