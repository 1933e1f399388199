#include "linux/device/LinuxSystemCounters.h"

#include "linux/device/MemoryInfo.h"
#include "linux/device/ProcessorStatistics.h"

#include <sys/statvfs.h>
#include <unistd.h>

#include <utility>

namespace halvane::linux {

std::optional<std::uint64_t> LinuxSystemCounters::pageSize() const {
    const long size = ::sysconf(_SC_PAGESIZE);
    if (size <= 0) return std::nullopt;
    return static_cast<std::uint64_t>(size);
}

std::optional<platform::MemoryCounters> LinuxSystemCounters::memory() const {
    const auto page = pageSize();
    auto text = memory_.text();
    const auto info = text ? MemoryInfo::parse(*std::move(text)) : std::nullopt;
    if (!page || !info) return std::nullopt;
    const auto pages = [&](const char* field) { return info->bytes(field) / *page; };

    platform::MemoryCounters counters;
    counters.free = pages("MemFree");
    counters.active = pages("Active");
    counters.inactive = pages("Inactive");
    counters.external = pages("Active(file)") + pages("Inactive(file)");
    counters.purgeable = pages("SReclaimable");
    // The fields are not taken at one instant, and a container's are partly the host's: the sum may exceed the total.
    const std::uint64_t listed = counters.free + counters.active + counters.inactive;
    const std::uint64_t total = pages("MemTotal");
    counters.wired = total > listed ? total - listed : 0;
    return counters;
}

std::optional<platform::FileSystemCounters> LinuxSystemCounters::fileSystem(const std::string& path) const {
    struct statvfs status {};
    if (::statvfs(path.c_str(), &status) != 0) return std::nullopt;
    return platform::FileSystemCounters{.blocks = status.f_blocks, .freeBlocks = status.f_bfree, .availableBlocks = status.f_bavail};
}

std::optional<std::uint32_t> LinuxSystemCounters::processorCount() const {
    const auto all = processors();
    return all ? std::optional(static_cast<std::uint32_t>(all->size())) : std::nullopt;
}

std::optional<std::vector<platform::ProcessorCounters>> LinuxSystemCounters::processors() const {
    const auto text = statistics_.text();
    auto all = text ? ProcessorStatistics::parse(*text) : std::vector<platform::ProcessorCounters>();
    return all.empty() ? std::nullopt : std::optional(std::move(all));
}

}  // namespace halvane::linux
