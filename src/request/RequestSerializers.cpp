#include "request/RequestSerializers.h"

#include "http/FormRequestSerializer.h"
#include "http/JsonRequestSerializer.h"
#include "http/PropertyListRequestSerializer.h"

namespace halvane::request {

RequestSerializers::RequestSerializers(const platform::HttpHeaders& defaultHeaders)
    : serializers_{std::make_unique<http::FormRequestSerializer>(defaultHeaders),
                   std::make_unique<http::JsonRequestSerializer>(defaultHeaders),
                   std::make_unique<http::PropertyListRequestSerializer>(defaultHeaders)} {}

const http::RequestSerializer* RequestSerializers::xm_getRequestSerializer(XMRequestSerializerType type) const {
    const auto index = static_cast<std::uint64_t>(type);
    return index < serializers_.size() ? serializers_[index].get() : nullptr;
}

}  // namespace halvane::request
