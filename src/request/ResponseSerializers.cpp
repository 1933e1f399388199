#include "request/ResponseSerializers.h"

#include "http/JsonResponseSerializer.h"
#include "http/PropertyListResponseSerializer.h"
#include "http/RawResponseSerializer.h"
#include "http/XmlResponseSerializer.h"

namespace halvane::request {

ResponseSerializers::ResponseSerializers()
    : serializers_{std::make_unique<http::RawResponseSerializer>(),
                   std::make_unique<http::JsonResponseSerializer>(http::JsonReading::AllowFragments, http::EmptyBody::Absent),
                   std::make_unique<http::PropertyListResponseSerializer>(), std::make_unique<http::XmlResponseSerializer>()} {}

const http::ResponseSerializer* ResponseSerializers::xm_getResponseSerializer(XMResponseSerializerType type) const {
    const auto index = static_cast<std::uint64_t>(type);
    return index < serializers_.size() ? serializers_[index].get() : nullptr;
}

std::pair<Response, Failure> ResponseSerializers::xm_processResponse(platform::HttpDataResult result, XMResponseSerializerType type) const {
    const bool brokeOff = result.error.has_value();
    Failure transportError = std::move(result.error);
    const http::ResponseSerializer* serializer = type == XMResponseSerializerRAW ? nullptr : xm_getResponseSerializer(type);
    if (!brokeOff && serializer == nullptr)
        transportError = serializers_[XMResponseSerializerRAW]->refusalOf(*result.response, result.body);
    if (type == XMResponseSerializerRAW) {
        Response bytes;
        if (result.response) bytes = util::Value(util::Value::Data{std::move(result.body)});
        return {std::move(bytes), std::move(transportError)};
    }
    if (serializer == nullptr) return {std::nullopt, std::move(transportError)};
    if (brokeOff) {
        const bool isRefused = result.response && !result.response->isSuccess();
        return {std::nullopt, isRefused ? serializer->refusalOf(*result.response, std::move(result.body)) : std::move(transportError)};
    }
    auto decoded = serializer->decode(*result.response, std::move(result.body));
    if (!decoded) return {std::nullopt, std::move(decoded).error()};
    return {*std::move(decoded), std::nullopt};
}

}  // namespace halvane::request
