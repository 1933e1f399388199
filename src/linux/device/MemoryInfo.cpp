#include "linux/device/MemoryInfo.h"

#include "util/Text.h"

#include <limits>

namespace halvane::linux {

std::optional<MemoryInfo> MemoryInfo::read(const SystemFiles& files) {
    const auto text = files.text("proc/meminfo");
    return text ? parse(*text) : std::nullopt;
}

std::optional<MemoryInfo> MemoryInfo::parse(std::string_view text) {
    MemoryInfo info;
    for (const auto& line : util::split(text, '\n')) {
        const auto colon = line.find(':');
        if (colon == std::string::npos) continue;
        std::string amount = util::trimmed(line.substr(colon + 1));
        if (!amount.ends_with(" kB")) continue;  // counts of huge pages
        amount.resize(amount.size() - 3);
        const auto kilobytes = wholeNumber(util::trimmed(amount));
        if (!kilobytes || *kilobytes > std::numeric_limits<std::uint64_t>::max() / 1024) continue;
        info.fields_[line.substr(0, colon)] = *kilobytes * 1024;
    }
    if (info.bytes("MemTotal") == 0) return std::nullopt;
    return info;
}

std::uint64_t MemoryInfo::bytes(std::string_view field) const {
    const auto found = fields_.find(field);
    return found == fields_.end() ? 0 : found->second;
}

}  // namespace halvane::linux
