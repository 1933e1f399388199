#pragma once

#include "http/ResponseSerializer.h"

namespace halvane::http {

/// Property lists, XML or binary.
class PropertyListResponseSerializer final : public ResponseSerializer {
public:
    PropertyListResponseSerializer() { setAcceptableContentTypes({"application/x-plist"}); }

protected:
    [[nodiscard]] util::Result<std::optional<ResponseObject>> decodeBody(const platform::HttpResponse& response,
                                                                         const util::Bytes& body) const override;
};

}  // namespace halvane::http
