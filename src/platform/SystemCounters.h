#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace halvane::platform {

/// Pages of memory by use.
struct MemoryCounters {
    std::uint64_t free = 0;
    std::uint64_t active = 0;
    std::uint64_t inactive = 0;
    std::uint64_t speculative = 0;
    std::uint64_t wired = 0;
    std::uint64_t compressor = 0;
    std::uint64_t external = 0;   ///< backed by files
    std::uint64_t purgeable = 0;  ///< the system may take them back at any time
};

/// A mounted file system, in blocks of its own size.
struct FileSystemCounters {
    std::uint64_t blocks = 0;
    std::uint64_t freeBlocks = 0;
    std::uint64_t availableBlocks = 0;  ///< to users without privileges
};

/// What one processor did since the system started, in ticks.
struct ProcessorCounters {
    std::uint64_t user = 0;
    std::uint64_t system = 0;  ///< with interrupts, and what a host took away
    std::uint64_t idle = 0;    ///< with waiting for disks
    std::uint64_t nice = 0;
};

/// Usage counters of the running system, read afresh at each call. Any thread.
class SystemCounters {
public:
    virtual ~SystemCounters() = default;
    /// Bytes in a page.
    [[nodiscard]] virtual std::optional<std::uint64_t> pageSize() const = 0;
    [[nodiscard]] virtual std::optional<MemoryCounters> memory() const = 0;
    [[nodiscard]] virtual std::optional<FileSystemCounters> fileSystem(const std::string& path) const = 0;
    /// How many processors are at work.
    [[nodiscard]] virtual std::optional<std::uint32_t> processorCount() const = 0;
    /// Of each processor at work, in the order of their numbers.
    [[nodiscard]] virtual std::optional<std::vector<ProcessorCounters>> processors() const = 0;
};

}  // namespace halvane::platform
