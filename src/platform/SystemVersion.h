#pragma once

#include "util/Value.h"

namespace halvane::platform {

/// What the operating system calls itself: a dictionary with "ProductName" and "ProductVersion".
/// Any thread.
class SystemVersion {
public:
    virtual ~SystemVersion() = default;
    /// The property list of that system file; empty when it cannot be read.
    [[nodiscard]] virtual util::Dictionary propertyList() const = 0;
};

}  // namespace halvane::platform
