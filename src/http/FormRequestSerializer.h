#pragma once

#include "http/RequestSerializer.h"

namespace halvane::http {

/// Parameters become a form-urlencoded body; absent ones an empty one.
class FormRequestSerializer final : public RequestSerializer {
public:
    using RequestSerializer::RequestSerializer;

protected:
    util::Result<void> encode(const std::optional<util::Dictionary>& parameters, platform::HttpRequest& request) const override;
};

}  // namespace halvane::http
