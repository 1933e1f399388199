#pragma once

#include <optional>
#include <string>

namespace halvane::platform {

/// Named values of the running system, such as "hw.model" or "hw.memsize". Any thread.
class SystemControl {
public:
    virtual ~SystemControl() = default;
    /// Absent for a name that is not known here, or whose source cannot be read.
    [[nodiscard]] virtual std::optional<std::string> valueByName(const std::string& name) const = 0;
};

}  // namespace halvane::platform
