#include "util/SizeText.h"

#include "util/Value.h"

#include <fmt/format.h>

namespace halvane::util {

namespace {
constexpr std::int64_t kKilobyte = 1024;
constexpr std::int64_t kMegabyte = 1024 * kKilobyte;
constexpr std::int64_t kGigabyte = 1024 * kMegabyte;

std::string in(const char* unit, std::int64_t bytes, std::int64_t unitBytes) {
    return fmt::format("{:.2f}{}", static_cast<double>(bytes) / static_cast<double>(unitBytes), unit);
}
}  // namespace

std::string SizeText::converBytesToSize(std::int64_t bytes) {
    if (bytes < kMegabyte) return in("KB", bytes, kKilobyte);
    if (bytes < kGigabyte) return in("MB", bytes, kMegabyte);
    return in("GB", bytes, kGigabyte);
}

std::string SizeText::converStringToSize(const std::string& bytes) {
    const Value text(bytes);
    return converBytesToSize(integerOf(&text));
}

}  // namespace halvane::util
