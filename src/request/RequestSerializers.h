#pragma once

#include "http/RequestSerializer.h"
#include "request/XMTypes.h"

#include <array>
#include <memory>

namespace halvane::request {

/// The three ways of writing parameters, each made once for an engine. Immutable; any thread.
class RequestSerializers {
public:
    explicit RequestSerializers(const platform::HttpHeaders& defaultHeaders);

    /// Null for a type that there is not.
    [[nodiscard]] const http::RequestSerializer* xm_getRequestSerializer(XMRequestSerializerType type) const;

private:
    std::array<std::unique_ptr<const http::RequestSerializer>, 3> serializers_;
};

}  // namespace halvane::request
