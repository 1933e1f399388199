#pragma once

#include "linux/device/SystemFiles.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace halvane::linux {

/// One reading of /proc/meminfo. A value; any thread.
class MemoryInfo {
public:
    /// Absent when the text cannot be read or names no total.
    static std::optional<MemoryInfo> read(const SystemFiles& files);

    /// Bytes of a field such as "Active(file)"; 0 for a field that this kernel does not have.
    [[nodiscard]] std::uint64_t bytes(const std::string& field) const;

private:
    std::map<std::string, std::uint64_t> fields_;
};

}  // namespace halvane::linux
