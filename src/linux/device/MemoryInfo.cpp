#include "linux/device/MemoryInfo.h"

#include "util/Text.h"

#include <limits>

namespace halvane::linux {

namespace {

/// What stands behind "field:" on its line; empty when there is no such line.
std::string_view amountOf(std::string_view text, std::string_view field) {
    for (auto at = text.find(field); at != std::string_view::npos; at = text.find(field, at + 1)) {
        const auto end = at + field.size();
        const bool whole = (at == 0 || text[at - 1] == '\n') && end < text.size() && text[end] == ':';
        if (whole) return text.substr(end + 1, text.find('\n', end) - end - 1);
    }
    return {};
}

}  // namespace

std::optional<MemoryInfo> MemoryInfo::read(const SystemFiles& files) {
    auto text = files.text("proc/meminfo");
    return text ? parse(*std::move(text)) : std::nullopt;
}

std::optional<MemoryInfo> MemoryInfo::parse(std::string text) {
    MemoryInfo info(std::move(text));
    if (info.bytes("MemTotal") == 0) return std::nullopt;
    return info;
}

std::uint64_t MemoryInfo::bytes(std::string_view field) const {
    constexpr std::string_view kUnit = " kB";
    std::string amount = util::trimmed(amountOf(text_, field));
    if (!amount.ends_with(kUnit)) return 0;  // counts of huge pages
    amount.resize(amount.size() - kUnit.size());
    const auto kilobytes = wholeNumber(util::trimmed(amount));
    return kilobytes && *kilobytes <= std::numeric_limits<std::uint64_t>::max() / 1024 ? *kilobytes * 1024 : 0;
}

}  // namespace halvane::linux
