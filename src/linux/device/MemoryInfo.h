#pragma once

#include "linux/device/SystemFiles.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace halvane::linux {

/// One reading of /proc/meminfo. A value; any thread.
class MemoryInfo {
public:
    /// Absent when the text cannot be read or names no total.
    static std::optional<MemoryInfo> read(const SystemFiles& files);
    /// The same of a text that was read already.
    static std::optional<MemoryInfo> parse(std::string text);

    /// Bytes of a field such as "Active(file)"; 0 for a field that this kernel does not have, for one that is no
    /// amount of kB, and for more bytes than there can be.
    [[nodiscard]] std::uint64_t bytes(std::string_view field) const;

private:
    explicit MemoryInfo(std::string text) : text_(std::move(text)) {}

    std::string text_;  // read every second for a few of its fifty lines, so it is looked through and not taken apart
};

}  // namespace halvane::linux
