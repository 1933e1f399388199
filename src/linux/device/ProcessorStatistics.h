#pragma once

#include "platform/SystemCounters.h"

#include <string_view>
#include <vector>

namespace halvane::linux {

/// Reads the text of /proc/stat. Waiting for disks counts as idle; interrupts, and time that the host gave to
/// others, count as system. The time of guests is part of user and nice already.
class ProcessorStatistics {
public:
    /// The lines "cpu0", "cpu1" … in their order; the line of all together is none of them. A line that is cut
    /// short or holds something else than numbers counts what stands before. Empty when there is no such line.
    [[nodiscard]] static std::vector<platform::ProcessorCounters> parse(std::string_view text);
};

}  // namespace halvane::linux
