#pragma once

#include <string_view>

namespace halvane::util {

/// Where free-text lines of the program go. Callers replace secrets by `kRedacted` before they write.
/// Any thread; never fails, never throws.
class Log {
public:
    virtual ~Log() = default;
    virtual void write(std::string_view line) = 0;
};

inline constexpr const char* kRedacted = "<redacted>";

}  // namespace halvane::util
