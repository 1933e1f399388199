#pragma once

#include "http/RequestSerializer.h"

namespace halvane::http {

/// Parameters become an XML property list; absent ones no body. Errors: what a property list has no form
/// for stands among them: null, dates before 1933 or after 2069, text with control characters.
class PropertyListRequestSerializer final : public RequestSerializer {
public:
    using RequestSerializer::RequestSerializer;

protected:
    util::Result<void> encode(const std::optional<util::Dictionary>& parameters, platform::HttpRequest& request) const override;
};

}  // namespace halvane::http
