#pragma once

#include "http/ResponseSerializer.h"

namespace halvane::http {

/// Any body as it is, as bytes.
class RawResponseSerializer final : public ResponseSerializer {
protected:
    [[nodiscard]] util::Result<std::optional<ResponseObject>> decodeBody(const platform::HttpResponse& /*response*/,
                                                                         const util::Bytes& body) const override {
        return std::optional<ResponseObject>(util::Value(util::Value::Data{body}));
    }
};

}  // namespace halvane::http
