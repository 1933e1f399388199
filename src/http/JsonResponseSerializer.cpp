#include "http/JsonResponseSerializer.h"

#include "util/Json.h"

namespace halvane::http {

util::Result<util::Value> JsonResponseSerializer::decodeBody(const platform::HttpResponse& response, const util::Bytes& body) const {
    constexpr int kNoContent = 204;
    constexpr int kResetContent = 205;
    if (body.empty() && (response.status == kNoContent || response.status == kResetContent)) return util::Value();
    auto value = util::Json::decode(body);
    if (value && reading_ == JsonReading::ObjectsOnly && value->dictionary() == nullptr && value->list() == nullptr) {
        return util::dataError("the JSON text is neither an object nor a list");
    }
    return value;
}

}  // namespace halvane::http
