#include "util/Text.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include <locale.h>

namespace halvane::util {

namespace {

constexpr std::string_view kSpace = " \t\r\n\f\v";
constexpr std::string_view kDigits = "0123456789";

bool isControl(unsigned char c) { return c < 0x20 || c == 0x7F; }

}  // namespace

std::string replaced(std::string_view text, std::string_view from, std::string_view to) {
    if (from.empty()) return std::string(text);
    std::string result;
    std::size_t position = 0;
    for (std::size_t found = text.find(from); found != std::string_view::npos; found = text.find(from, position)) {
        result.append(text.substr(position, found - position)).append(to);
        position = found + from.size();
    }
    return result.append(text.substr(position));
}

std::string withoutLineFeeds(std::string_view text) { return replaced(text, "\n", ""); }

std::string lowercasedAscii(std::string_view text) {
    std::string lower(text);
    // By the C library it would depend on the person's language: a Turkish capital I has another small one.
    std::ranges::transform(lower, lower.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return lower;
}

std::vector<std::string> split(std::string_view text, char separator) {
    std::vector<std::string> pieces;
    std::size_t start = 0;
    for (std::size_t end = text.find(separator); end != std::string_view::npos; end = text.find(separator, start)) {
        pieces.emplace_back(text.substr(start, end - start));
        start = end + 1;
    }
    pieces.emplace_back(text.substr(start));
    return pieces;
}

std::string trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(kSpace);
    if (first == std::string_view::npos) return {};
    return std::string(text.substr(first, text.find_last_not_of(kSpace) - first + 1));
}

namespace {

/// How many bytes from `start` on are digits.
std::size_t digitsAt(std::string_view text, std::size_t start) {
    return std::min(text.find_first_not_of(kDigits, start), text.size()) - std::min(start, text.size());
}

bool isSignAt(std::string_view text, std::size_t position) {
    return position < text.size() && (text[position] == '+' || text[position] == '-');
}

/// How many bytes at the beginning are a decimal number; 0 for none.
std::size_t numberAtStart(std::string_view text) {
    std::size_t end = isSignAt(text, 0) ? 1 : 0;
    std::size_t digits = digitsAt(text, end);
    end += digits;
    if (end < text.size() && text[end] == '.') {
        const std::size_t decimals = digitsAt(text, end + 1);
        digits += decimals;
        end += 1 + decimals;
    }
    if (digits == 0) return 0;
    if (end < text.size() && (text[end] == 'e' || text[end] == 'E')) {
        const std::size_t exponent = end + (isSignAt(text, end + 1) ? 2 : 1);
        if (const std::size_t more = digitsAt(text, exponent); more > 0) end = exponent + more;
    }
    return end;
}

}  // namespace

std::optional<LeadingNumber> leadingNumber(std::string_view text) {
    static const locale_t kPlain = newlocale(LC_ALL_MASK, "C", nullptr);
    text.remove_prefix(std::min(text.find_first_not_of(kSpace), text.size()));
    const std::size_t length = numberAtStart(text);
    if (length == 0) return std::nullopt;
    // Unlike the standard library's own, this one tells too large from too small.
    return LeadingNumber{strtod_l(std::string(text.substr(0, length)).c_str(), nullptr, kPlain), text.substr(length)};
}

bool hasControls(std::string_view text) { return std::ranges::any_of(text, isControl); }

std::string withoutControls(std::string text) {
    std::ranges::replace_if(text, isControl, '?');
    return text;
}

bool isHostName(std::string_view name) {
    constexpr std::size_t kLongest = 253;
    return !name.empty() && name.size() <= kLongest && std::ranges::all_of(name, [](unsigned char c) {
        return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '-' || c == '.';
    });
}

bool isValidUtf8(std::string_view bytes) {
    std::size_t i = 0;
    while (i < bytes.size()) {
        const auto lead = static_cast<std::uint8_t>(bytes[i]);
        const std::size_t length = lead < 0x80 ? 1 : (lead >> 5) == 0x6 ? 2 : (lead >> 4) == 0xE ? 3 : (lead >> 3) == 0x1E ? 4 : 0;
        if (length == 0 || bytes.size() - i < length) return false;
        std::uint32_t point = length == 1 ? lead : lead & (0xFFU >> (length + 1));
        for (std::size_t k = 1; k < length; ++k) {
            const auto next = static_cast<std::uint8_t>(bytes[i + k]);
            if ((next >> 6) != 0x2) return false;
            point = (point << 6) | (next & 0x3FU);
        }
        constexpr std::uint32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
        if (point < kLeast[length] || point > 0x10FFFF || (point >= 0xD800 && point <= 0xDFFF)) return false;
        i += length;
    }
    return true;
}

namespace {

template <typename MustEscape>
std::string escapedWhere(std::string_view text, MustEscape mustEscape) {
    constexpr char kHex[] = "0123456789ABCDEF";
    std::string result;
    result.reserve(text.size());
    for (const char c : text) {
        const auto byte = static_cast<std::uint8_t>(c);
        if (mustEscape(c)) {
            result += {'%', kHex[byte >> 4], kHex[byte & 0xF]};
        } else {
            result += c;
        }
    }
    return result;
}

bool isLetterOrDigit(char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

}  // namespace

std::string addingPercentEscapes(std::string_view text) {
    constexpr std::string_view kEscaped = "\"#%<>[\\]^`{|}";
    return escapedWhere(text, [&](char c) {
        const auto byte = static_cast<std::uint8_t>(c);
        return byte <= 0x20 || byte >= 0x7F || kEscaped.find(c) != std::string_view::npos;
    });
}

std::string percentEscapedComponent(std::string_view text) {
    constexpr std::string_view kKept = "-._~/?";
    return escapedWhere(text, [&](char c) { return !isLetterOrDigit(c) && kKept.find(c) == std::string_view::npos; });
}

std::string percentDecoded(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const int high = text[i] == '%' && i + 2 < text.size() ? hexDigit(text[i + 1]) : -1;
        const int low = high >= 0 ? hexDigit(text[i + 2]) : -1;
        if (low >= 0) {
            result += static_cast<char>(high * 16 + low);
            i += 2;
        } else {
            result += text[i];
        }
    }
    return result;
}

std::string fileNameOf(std::string text) {
    if (const auto end = text.find('\0'); end != std::string::npos) text.resize(end);
    if (const auto slash = text.find_last_of("/\\"); slash != std::string::npos) text.erase(0, slash + 1);
    text = trimmed(text);
    constexpr std::size_t kLongestName = 255;
    return text == "." || text == ".." || text.size() > kLongestName ? std::string() : text;
}

}  // namespace halvane::util
