#pragma once

#include <string>

namespace halvane::platform {

/// The desktop's default browser. Main thread.
class Browser {
public:
    virtual ~Browser() = default;
    /// False when no browser could be asked. Does not wait for it.
    virtual bool open(const std::string& url) = 0;
};

}  // namespace halvane::platform
