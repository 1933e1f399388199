#include "linux/device/ProcessorStatistics.h"

#include <array>
#include <charconv>
#include <cstdint>

namespace halvane::linux {

namespace {

constexpr std::string_view kProcessor = "cpu";

bool isDigit(char letter) { return letter >= '0' && letter <= '9'; }

/// In the order of the line. Kernels before 2.6.11 end it earlier.
enum Field { User, Nice, System, Idle, IoWait, Irq, SoftIrq, Steal, kFields };

std::array<std::uint64_t, kFields> fieldsOf(std::string_view line) {
    std::array<std::uint64_t, kFields> fields{};
    const char* position = line.data();
    const char* const end = position + line.size();
    for (auto& field : fields) {
        while (position != end && *position == ' ') ++position;
        const auto [next, error] = std::from_chars(position, end, field);
        if (error != std::errc()) break;
        position = next;
    }
    return fields;
}

}  // namespace

std::vector<platform::ProcessorCounters> ProcessorStatistics::parse(std::string_view text) {
    std::vector<platform::ProcessorCounters> processors;
    // The lines of the processors come first, and what follows is long on large machines.
    while (text.starts_with(kProcessor)) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(line.size() == text.size() ? line.size() : line.size() + 1);
        if (line.size() == kProcessor.size() || !isDigit(line[kProcessor.size()])) continue;
        const auto name = line.find(' ');
        if (name == std::string_view::npos) continue;
        const auto field = fieldsOf(line.substr(name));
        processors.push_back({.user = field[User],
                              .system = field[System] + field[Irq] + field[SoftIrq] + field[Steal],
                              .idle = field[Idle] + field[IoWait],
                              .nice = field[Nice]});
    }
    return processors;
}

}  // namespace halvane::linux
