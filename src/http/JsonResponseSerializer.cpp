#include "http/JsonResponseSerializer.h"

#include "util/Json.h"

namespace halvane::http {

util::Result<std::optional<ResponseObject>> JsonResponseSerializer::decodeBody(const platform::HttpResponse& response,
                                                                               const util::Bytes& body) const {
    constexpr int kNoContent = 204;
    constexpr int kResetContent = 205;
    using Object = std::optional<ResponseObject>;
    if (body.empty() || body == " ") {
        if (empty_ == EmptyBody::Absent) return Object();
        if (body.empty() && (response.status == kNoContent || response.status == kResetContent)) return Object(util::Value());
    }
    auto value = util::Json::decode(body);
    if (!value) return value.error();
    if (reading_ == JsonReading::ObjectsOnly && value->dictionary() == nullptr && value->list() == nullptr) {
        return util::dataError("the JSON text is neither an object nor a list");
    }
    return Object(*std::move(value));
}

}  // namespace halvane::http
