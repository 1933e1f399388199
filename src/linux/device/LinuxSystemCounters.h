#pragma once

#include "linux/device/KeptFile.h"
#include "linux/device/SystemFiles.h"
#include "platform/SystemCounters.h"

namespace halvane::linux {

/// /proc/meminfo, /proc/stat and statvfs. Wired is what is neither free nor on the active and inactive lists:
/// the kernel's own, page tables, locked and huge pages. Speculative and compressor stay 0. A computer asks
/// every second, so the two texts stay open.
class LinuxSystemCounters final : public platform::SystemCounters {
public:
    explicit LinuxSystemCounters(const SystemFiles& files) : memory_(files.whole("proc/meminfo")), statistics_(files.whole("proc/stat")) {}

    [[nodiscard]] std::optional<std::uint64_t> pageSize() const override;
    [[nodiscard]] std::optional<platform::MemoryCounters> memory() const override;
    [[nodiscard]] std::optional<platform::FileSystemCounters> fileSystem(const std::string& path) const override;
    [[nodiscard]] std::optional<std::uint32_t> processorCount() const override;
    [[nodiscard]] std::optional<std::vector<platform::ProcessorCounters>> processors() const override;

private:
    const KeptFile memory_;
    const KeptFile statistics_;
};

}  // namespace halvane::linux
