#pragma once

#include "http/RequestSerializer.h"

namespace halvane::http {

/// Parameters become a JSON body; absent ones none.
class JsonRequestSerializer final : public RequestSerializer {
public:
    using RequestSerializer::RequestSerializer;

protected:
    util::Result<void> encode(const std::optional<util::Dictionary>& parameters, platform::HttpRequest& request) const override;
};

}  // namespace halvane::http
