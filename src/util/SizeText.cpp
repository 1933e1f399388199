#include "util/SizeText.h"

#include "util/Text.h"
#include "util/Value.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace halvane::util {

namespace {

constexpr double kKilobyte = 1024;
constexpr double kMegabyte = 1024 * kKilobyte;
constexpr double kGigabyte = 1024 * kMegabyte;

/// Without its last two UTF-16 units: a character beyond them counts two, and none is cut in half.
std::string_view withoutLastTwo(std::string_view text) {
    constexpr unsigned char kFirstOfFourBytes = 0xF0;
    if (!isValidUtf8(text)) return text.substr(0, std::max<std::size_t>(text.size(), 2) - 2);
    for (int left = 2; left > 0 && !text.empty();) {
        const auto isContinuation = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80; };
        while (isContinuation(text.back())) text.remove_suffix(1);
        left -= static_cast<unsigned char>(text.back()) >= kFirstOfFourBytes ? 2 : 1;
        text.remove_suffix(1);
    }
    return text;
}

float factorOf(std::string_view rate) {
    if (rate.ends_with("kB") || rate.ends_with("KB")) return kKilobyte;
    if (rate.ends_with("MB")) return kMegabyte;
    if (rate.ends_with("GB")) return kGigabyte;
    return 1;
}

}  // namespace

std::string SizeText::converBytesToSize(std::int64_t bytes) { return formatSize(static_cast<double>(bytes)); }

std::string SizeText::converStringToSize(const std::string& bytes) {
    const Value text(bytes);
    return converBytesToSize(integerOf(&text));
}

std::string SizeText::formatSize(double bytes) {
    if (std::isnan(bytes)) return "--";
    if (bytes < kMegabyte) return fmt::format("{:.2f}KB", bytes / kKilobyte);
    if (bytes < kGigabyte) return fmt::format("{:.2f}MB", bytes / kMegabyte);
    return fmt::format("{:.2f}GB", bytes / kGigabyte);
}

std::string SizeText::formatSize(std::string_view bytes) {
    const auto leading = leadingNumber(bytes);
    return formatSize(leading ? leading->number : std::numeric_limits<double>::quiet_NaN());
}

std::uint64_t SizeText::formateRate(std::string_view rate) {
    const std::string_view amount = rate.substr(0, rate.find('/'));
    const auto leading = leadingNumber(withoutLastTwo(amount));
    constexpr double kLargest = std::numeric_limits<float>::max();
    const double number = leading ? std::clamp(leading->number, -kLargest, kLargest) : 0;
    const float bytes = static_cast<float>(number) * factorOf(amount);
    constexpr float kBeyond = 18446744073709551616.0F;  // 2 to the 64th
    if (!(bytes > 0)) return 0;
    return bytes < kBeyond ? static_cast<std::uint64_t>(bytes) : std::numeric_limits<std::uint64_t>::max();
}

}  // namespace halvane::util
