#include "http/RequestSerializer.h"

namespace halvane::http {

util::Result<platform::HttpRequest> RequestSerializer::request(const std::string& method, const std::string& url,
                                                               const std::optional<util::Dictionary>& parameters) const {
    platform::HttpRequest request{.method = method, .url = url, .headers = headers_, .timeout = timeout_};
    if (parameters) {
        if (const auto encoded = encode(*parameters, request); !encoded) return encoded.error();
    }
    return request;
}

}  // namespace halvane::http
