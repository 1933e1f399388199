#pragma once

#include "http/RequestSerializer.h"

namespace halvane::http {

/// Parameters become a JSON body, "Content-Type" "application/json" unless one was set.
class JsonRequestSerializer final : public RequestSerializer {
public:
    using RequestSerializer::RequestSerializer;

protected:
    util::Result<void> encode(const util::Dictionary& parameters, platform::HttpRequest& request) const override;
};

}  // namespace halvane::http
