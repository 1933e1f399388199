#pragma once

#include "http/ResponseSerializer.h"
#include "platform/HttpSession.h"
#include "request/XMTypes.h"

#include <array>
#include <memory>
#include <utility>

namespace halvane::request {

/// The four ways of reading replies, each made once for an engine. Immutable; any thread.
class ResponseSerializers {
public:
    ResponseSerializers();

    /// Null for a type that there is not.
    [[nodiscard]] const http::ResponseSerializer* xm_getResponseSerializer(XMResponseSerializerType type) const;

    /// What a task's end means to the center: its object and its error.
    ///
    /// RAW: the bytes, together with the transport's error if there was one (a status outside 200-299 is one). The other
    /// types: the decoded object with the transport's error, or, when the reply is not accepted or does not decode, that
    /// error alone, which beats the transport's. Of a transfer that broke off nothing is decoded. A type that there is not
    /// decodes nothing.
    [[nodiscard]] std::pair<Response, Failure> xm_processResponse(platform::HttpDataResult result, XMResponseSerializerType type) const;

private:
    std::array<std::unique_ptr<const http::ResponseSerializer>, 4> serializers_;
};

}  // namespace halvane::request
