#pragma once

#include "http/ResponseSerializer.h"

namespace halvane::http {

enum class JsonReading {
    ObjectsOnly,    ///< the top must be an object or a list
    AllowFragments  ///< any JSON value
};

/// JSON bodies. A reply that has no body by its status (204, 205) decodes to null; any other empty
/// body is not JSON.
class JsonResponseSerializer final : public ResponseSerializer {
public:
    explicit JsonResponseSerializer(JsonReading reading = JsonReading::ObjectsOnly) : reading_(reading) {
        setAcceptableContentTypes({"application/json", "text/json", "text/javascript"});
    }

protected:
    [[nodiscard]] util::Result<util::Value> decodeBody(const platform::HttpResponse& response, const util::Bytes& body) const override;

private:
    JsonReading reading_;
};

}  // namespace halvane::http
