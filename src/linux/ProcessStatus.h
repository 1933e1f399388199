#pragma once

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <string>

namespace halvane::linux {

/// What the kernel tells everybody of a process, also of one that has ended and was not collected. A value.
struct ProcessStatus {
    std::string name;             ///< of its program, at most 15 bytes
    std::uint64_t startTime = 0;  ///< in the kernel's ticks since it began

    /// Absent when there is no such process.
    static std::optional<ProcessStatus> of(pid_t process);
};

}  // namespace halvane::linux
