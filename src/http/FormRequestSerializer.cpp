#include "http/FormRequestSerializer.h"

#include "http/FormEncoding.h"

namespace halvane::http {

util::Result<void> FormRequestSerializer::encode(const std::optional<util::Dictionary>& parameters, platform::HttpRequest& request) const {
    setContentTypeWhereNoneIs(request, "application/x-www-form-urlencoded");
    if (parameters) request.body = formEncoded(*parameters);
    return {};
}

}  // namespace halvane::http
