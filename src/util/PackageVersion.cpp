#include "util/PackageVersion.h"

#include <algorithm>

namespace halvane::util {

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

/// Where the character at the beginning of `text` stands: a tilde, then the end or a digit, letters, all others.
int placeOf(std::string_view text) {
    if (text.empty() || isDigit(text.front())) return 0;
    if (text.front() == '~') return -1;
    constexpr int kAfterLetters = 256;
    return isLetter(text.front()) ? text.front() : text.front() + kAfterLetters;
}

std::string_view takeDigits(std::string_view& text) {
    const auto length = std::min(text.find_first_not_of("0123456789"), text.size());
    std::string_view digits = text.substr(0, length);
    text.remove_prefix(length);
    digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
    return digits;
}

std::strong_ordering compareNumbers(std::string_view a, std::string_view b) {
    return a.size() != b.size() ? a.size() <=> b.size() : a.compare(b) <=> 0;
}

std::strong_ordering compareParts(std::string_view a, std::string_view b) {
    while (!a.empty() || !b.empty()) {
        while ((!a.empty() && !isDigit(a.front())) || (!b.empty() && !isDigit(b.front()))) {
            if (const auto order = placeOf(a) <=> placeOf(b); order != 0) return order;
            a.remove_prefix(1);
            b.remove_prefix(1);
        }
        const auto left = takeDigits(a);
        if (const auto order = compareNumbers(left, takeDigits(b)); order != 0) return order;
    }
    return std::strong_ordering::equal;
}

bool hasOnly(std::string_view text, std::string_view others) {
    return std::ranges::all_of(text, [&](char c) { return isDigit(c) || isLetter(c) || others.find(c) != std::string_view::npos; });
}

}  // namespace

std::optional<PackageVersion> PackageVersion::parse(std::string_view text) {
    constexpr std::size_t kLongest = 128;  // it stands in file names
    constexpr std::size_t kLongestEpoch = 9;
    if (text.size() > kLongest) return std::nullopt;
    PackageVersion version;
    if (const auto colon = text.find(':'); colon != std::string_view::npos) {
        version.epoch_ = text.substr(0, colon);
        text.remove_prefix(colon + 1);
        if (version.epoch_.empty() || version.epoch_.size() > kLongestEpoch || !std::ranges::all_of(version.epoch_, isDigit))
            return std::nullopt;
    }
    if (const auto hyphen = text.rfind('-'); hyphen != std::string_view::npos) {
        version.revision_ = text.substr(hyphen + 1);
        if (version.revision_.empty()) return std::nullopt;
        text = text.substr(0, hyphen);
    }
    version.upstream_ = text;
    if (text.empty() || !isDigit(text.front()) || !hasOnly(text, ".+-~:") || !hasOnly(version.revision_, ".+~")) return std::nullopt;
    return version;
}

std::strong_ordering operator<=>(const PackageVersion& a, const PackageVersion& b) {
    if (const auto order = compareParts(a.epoch_, b.epoch_); order != 0) return order;
    if (const auto order = compareParts(a.upstream_, b.upstream_); order != 0) return order;
    return compareParts(a.revision_, b.revision_);
}

}  // namespace halvane::util
