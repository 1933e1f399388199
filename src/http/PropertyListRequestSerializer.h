#pragma once

#include "http/RequestSerializer.h"

namespace halvane::http {

/// Parameters become an XML property list; absent ones no body. Errors: a null among them, which a property list has no
/// form for.
class PropertyListRequestSerializer final : public RequestSerializer {
public:
    using RequestSerializer::RequestSerializer;

protected:
    util::Result<void> encode(const std::optional<util::Dictionary>& parameters, platform::HttpRequest& request) const override;
};

}  // namespace halvane::http
