#include "linux/device/LinuxSystemControl.h"

#include "linux/device/MachineIdentity.h"
#include "linux/device/MemoryInfo.h"
#include "linux/device/ProcessorName.h"
#include "util/Text.h"

#include <sys/utsname.h>
#include <unistd.h>

namespace halvane::linux {

namespace {

constexpr const char* kMemoryBlocks = "sys/devices/system/memory";

std::optional<std::string> machine() {
    utsname name{};
    if (::uname(&name) != 0) return std::nullopt;
    return std::string(name.machine);
}

std::string pageSize() { return std::to_string(::sysconf(_SC_PAGESIZE)); }

/// Bytes in the memory blocks that are on; 0 where the kernel has none.
std::uint64_t onlineMemory(const SystemFiles& files) {
    const std::filesystem::path directory = kMemoryBlocks;
    const auto size = files.line(directory / "block_size_bytes");
    const auto bytes = size ? wholeNumber(*size, 16) : std::nullopt;
    if (!bytes) return 0;
    std::uint64_t blocks = 0;
    for (const auto& name : files.names(directory)) {
        if (name.starts_with("memory") && files.line(directory / name / "state") == "online") ++blocks;
    }
    return blocks * *bytes;
}

/// How many processors a list such as "0-3,8,10-11" names; 0 for a text of another kind.
unsigned long long listed(const std::string& list) {
    unsigned long long count = 0;
    for (const auto& piece : util::split(list, ',')) {
        const auto dash = piece.find('-');
        const auto first = wholeNumber(piece.substr(0, dash));
        const auto last = dash == std::string::npos ? first : wholeNumber(piece.substr(dash + 1));
        if (!first || !last || *last < *first || *last > 1'000'000) return 0;
        count += *last - *first + 1;
    }
    return count;
}

}  // namespace

std::vector<std::string> LinuxSystemControl::names() {
    return {"hw.machine",     "hw.memsize",  "hw.model",
            "hw.ncpu",        "hw.pagesize", "kern.hostname",
            "kern.osrelease", "kern.ostype", "machdep.cpu.brand_string"};
}

std::optional<std::string> LinuxSystemControl::valueByName(const std::string& name) const {
    if (name == "hw.model") return model();
    if (name == "hw.memsize") return memorySize();
    if (name == "hw.ncpu") return processorCount();
    if (name == "hw.pagesize") return pageSize();
    if (name == "hw.machine") return machine();
    if (name == "machdep.cpu.brand_string") return processorBrand();
    if (name == "kern.hostname") return files_.line("proc/sys/kernel/hostname");
    if (name == "kern.osrelease") return files_.line("proc/sys/kernel/osrelease");
    if (name == "kern.ostype") return files_.line("proc/sys/kernel/ostype");
    return std::nullopt;
}

std::optional<std::string> LinuxSystemControl::model() const {
    for (const char* path : {"sys/class/dmi/id/product_name", "sys/class/dmi/id/product_version", "proc/device-tree/model"}) {
        if (auto text = filledIn(files_.line(path))) return text;
    }
    return std::nullopt;
}

std::optional<std::string> LinuxSystemControl::memorySize() const {
    const auto info = MemoryInfo::read(files_);
    const std::uint64_t usable = info ? info->bytes("MemTotal") : 0;
    const std::uint64_t built = onlineMemory(files_);
    // A kernel keeps a few percent for itself. A container that sees a quarter less has been given
    // less: its limit is the truth, not the host's blocks.
    const std::uint64_t size = usable == 0 || usable >= built / 4 * 3 ? std::max(built, usable) : usable;
    return size == 0 ? std::nullopt : std::optional(std::to_string(size));
}

std::optional<std::string> LinuxSystemControl::processorCount() const {
    const auto online = files_.line("sys/devices/system/cpu/online");
    const auto count = online ? listed(*online) : 0;
    return count == 0 ? std::nullopt : std::optional(std::to_string(count));
}

std::optional<std::string> LinuxSystemControl::processorBrand() const {
    const auto text = files_.text("proc/cpuinfo");
    return text ? processorName(*text) : std::nullopt;
}

}  // namespace halvane::linux
