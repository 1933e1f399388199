#pragma once

#include "http/ResponseSerializer.h"

namespace halvane::http {

/// XML bodies, as a tree; an empty one is absent.
class XmlResponseSerializer final : public ResponseSerializer {
public:
    XmlResponseSerializer() { setAcceptableContentTypes({"application/xml", "text/xml"}); }

protected:
    [[nodiscard]] util::Result<std::optional<ResponseObject>> decodeBody(const platform::HttpResponse& response,
                                                                         const util::Bytes& body) const override;
};

}  // namespace halvane::http
