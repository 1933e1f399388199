#pragma once

#include "linux/device/SystemFiles.h"
#include "platform/SystemCounters.h"

namespace halvane::linux {

/// /proc/meminfo and statvfs. Wired is what is neither free nor on the active and inactive lists:
/// the kernel's own, page tables, locked and huge pages. Speculative and compressor stay 0.
class LinuxSystemCounters final : public platform::SystemCounters {
public:
    explicit LinuxSystemCounters(SystemFiles files) : files_(std::move(files)) {}

    [[nodiscard]] std::optional<std::uint64_t> pageSize() const override;
    [[nodiscard]] std::optional<platform::MemoryCounters> memory() const override;
    [[nodiscard]] std::optional<platform::FileSystemCounters> fileSystem(const std::string& path) const override;

private:
    const SystemFiles files_;
};

}  // namespace halvane::linux
