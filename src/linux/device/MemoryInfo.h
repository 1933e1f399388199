#pragma once

#include "linux/device/SystemFiles.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace halvane::linux {

/// One reading of /proc/meminfo. A value; any thread.
class MemoryInfo {
public:
    /// Absent when the text cannot be read or names no total.
    static std::optional<MemoryInfo> read(const SystemFiles& files);
    /// The same of a text that was read already.
    static std::optional<MemoryInfo> parse(std::string_view text);

    /// Bytes of a field such as "Active(file)"; 0 for a field that this kernel does not have.
    [[nodiscard]] std::uint64_t bytes(std::string_view field) const;

private:
    std::map<std::string, std::uint64_t, std::less<>> fields_;
};

}  // namespace halvane::linux
