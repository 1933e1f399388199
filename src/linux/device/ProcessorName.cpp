#include "linux/device/ProcessorName.h"

#include "linux/device/SystemFiles.h"
#include "util/Text.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

namespace halvane::linux {

namespace {

struct Design {
    unsigned part;
    std::string_view name;
};

constexpr unsigned kArm = 0x41;

/// Main ID register, bits 15-4, of ARM's own designs.
constexpr std::array<Design, 27> kArmDesigns = {{
    {0xb76, "ARM1176"},     {0xc07, "Cortex-A7"},   {0xc08, "Cortex-A8"},   {0xc09, "Cortex-A9"},   {0xc0f, "Cortex-A15"},
    {0xd03, "Cortex-A53"},  {0xd04, "Cortex-A35"},  {0xd05, "Cortex-A55"},  {0xd07, "Cortex-A57"},  {0xd08, "Cortex-A72"},
    {0xd09, "Cortex-A73"},  {0xd0a, "Cortex-A75"},  {0xd0b, "Cortex-A76"},  {0xd0c, "Neoverse-N1"}, {0xd0d, "Cortex-A77"},
    {0xd40, "Neoverse-V1"}, {0xd41, "Cortex-A78"},  {0xd44, "Cortex-X1"},   {0xd46, "Cortex-A510"}, {0xd47, "Cortex-A710"},
    {0xd48, "Cortex-X2"},   {0xd49, "Neoverse-N2"}, {0xd4b, "Cortex-A78C"}, {0xd4c, "Cortex-X1C"},  {0xd4d, "Cortex-A715"},
    {0xd4e, "Cortex-X3"},   {0xd4f, "Neoverse-V2"},
}};

struct Line {
    std::string key;
    std::string value;
};

std::vector<Line> parsed(const std::string& cpuInfo) {
    std::vector<Line> lines;
    for (const auto& raw : util::split(cpuInfo, '\n')) {
        const auto colon = raw.find(':');
        if (colon == std::string::npos) continue;
        Line line{util::lowercasedAscii(util::trimmed(raw.substr(0, colon))), util::trimmed(raw.substr(colon + 1))};
        if (!line.value.empty() && util::isValidUtf8(line.value)) lines.push_back(std::move(line));
    }
    return lines;
}

std::optional<std::string> firstValue(const std::vector<Line>& lines, std::string_view key) {
    const auto found = std::ranges::find(lines, key, &Line::key);
    return found == lines.end() ? std::nullopt : std::optional(found->value);
}

std::optional<unsigned long long> hexadecimal(const std::string& text) {
    return text.starts_with("0x") ? wholeNumber(text.substr(2), 16) : std::nullopt;
}

std::string designName(const std::string& implementer, const std::string& part) {
    const auto number = hexadecimal(part);
    if (hexadecimal(implementer) == kArm && number) {
        const auto known = std::ranges::find_if(kArmDesigns, [&](const Design& design) { return design.part == *number; });
        if (known != kArmDesigns.end()) return "ARM " + std::string(known->name);
    }
    // Better the numbers, by which support can look it up, than nothing or a guess.
    return "ARM " + implementer + "/" + part;
}

std::optional<std::string> armName(const std::vector<Line>& lines) {
    std::vector<std::string> names;
    std::string implementer;
    for (const auto& [key, value] : lines) {
        if (key == "cpu implementer") implementer = value;
        if (key != "cpu part" || implementer.empty()) continue;
        if (const auto name = designName(implementer, value); std::ranges::find(names, name) == names.end()) names.push_back(name);
    }
    std::string joined;
    for (const auto& name : names) joined += (joined.empty() ? "" : " + ") + name;
    return joined.empty() ? std::nullopt : std::optional(joined);
}

}  // namespace

std::optional<std::string> processorName(const std::string& cpuInfo) {
    const auto lines = parsed(cpuInfo);
    if (auto name = firstValue(lines, "model name")) return name;
    if (auto name = armName(lines)) return name;
    // In turn: MIPS, POWER, RISC-V, S/390, boards with older kernels.
    for (const char* key : {"cpu model", "cpu", "uarch", "vendor_id", "hardware"}) {
        if (auto name = firstValue(lines, key)) return name;
    }
    return std::nullopt;
}

}  // namespace halvane::linux
