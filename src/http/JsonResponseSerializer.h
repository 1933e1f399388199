#pragma once

#include "http/ResponseSerializer.h"

#include <cstdint>

namespace halvane::http {

enum class JsonReading : std::uint8_t {
    ObjectsOnly,    ///< the top must be an object or a list
    AllowFragments  ///< any JSON value
};

/// What a reply without a body is, which no JSON text is.
enum class EmptyBody : std::uint8_t {
    NullByStatus,  ///< null where the status says that there is none (204, 205), else an error
    Absent         ///< no object, no error
};

/// JSON bodies.
class JsonResponseSerializer final : public ResponseSerializer {
public:
    explicit JsonResponseSerializer(JsonReading reading = JsonReading::ObjectsOnly, EmptyBody empty = EmptyBody::NullByStatus)
        : reading_(reading), empty_(empty) {
        setAcceptableContentTypes({"application/json", "text/json", "text/javascript"});
    }

protected:
    [[nodiscard]] util::Result<std::optional<ResponseObject>> decodeBody(const platform::HttpResponse& response,
                                                                         const util::Bytes& body) const override;

private:
    JsonReading reading_;
    EmptyBody empty_;
};

}  // namespace halvane::http
