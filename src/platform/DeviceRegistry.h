#pragma once

#include "util/Value.h"

#include <optional>
#include <string>

namespace halvane::platform {

/// Properties of this computer's hardware. Any thread; may block for the time of one bus call.
class DeviceRegistry {
public:
    virtual ~DeviceRegistry() = default;
    /// The property `key` of the first service of class `serviceClass`: text or bytes. Absent when
    /// the service or the property is not there or may not be read.
    [[nodiscard]] virtual std::optional<util::Value> property(const std::string& serviceClass, const std::string& key) const = 0;
};

}  // namespace halvane::platform
