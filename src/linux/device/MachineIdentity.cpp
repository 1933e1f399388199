#include "linux/device/MachineIdentity.h"

#include "util/Text.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>

namespace halvane::linux {

namespace {

constexpr std::array<std::string_view, 25> kFillers = {"to be filled by o.e.m.",
                                                       "to be filled by o.e.m",
                                                       "o.e.m.",
                                                       "oem",
                                                       "none",
                                                       "n/a",
                                                       "na",
                                                       "null",
                                                       "default string",
                                                       "default",
                                                       "system serial number",
                                                       "system product name",
                                                       "system version",
                                                       "serial number",
                                                       "not specified",
                                                       "not applicable",
                                                       "not available",
                                                       "unspecified",
                                                       "unknown",
                                                       "invalid",
                                                       "empty",
                                                       "type1productconfigid",
                                                       "sernum",
                                                       "chassis serial number",
                                                       "xxxxxxxx"};

/// What board makers ship when they never write a UUID.
constexpr std::array<std::string_view, 2> kFillerUuids = {"03000200-0400-0500-0006-000700080009", "12345678-1234-5678-90AB-CDDEEFAABBCC"};

/// "0", "00000000", "........", "FFFFFFFF": one character says nothing, however often.
bool isOneCharacterRepeated(const std::string& text, std::string_view characters) {
    return characters.find(text.front()) != std::string_view::npos && text.find_first_not_of(text.front()) == std::string::npos;
}

}  // namespace

std::optional<std::string> filledIn(const std::optional<std::string>& firmwareText) {
    if (!firmwareText) return std::nullopt;
    std::string text = util::trimmed(*firmwareText);
    if (text.empty() || !util::isValidUtf8(text) || std::ranges::any_of(text, [](unsigned char c) { return std::iscntrl(c) != 0; }))
        return std::nullopt;
    const std::string lower = util::lowercasedAscii(text);
    if (std::ranges::find(kFillers, lower) != kFillers.end() || isOneCharacterRepeated(lower, "0.-_ x*f?") || lower == "0123456789" ||
        lower == "123456789" || lower == "1234567890")
        return std::nullopt;
    return text;
}

std::optional<std::string> filledInUuid(const std::optional<std::string>& firmwareText) {
    if (!firmwareText) return std::nullopt;
    std::string uuid = util::trimmed(*firmwareText);
    if (uuid.size() != 36) return std::nullopt;
    std::string digits;
    for (std::size_t i = 0; i < uuid.size(); ++i) {
        const auto character = static_cast<unsigned char>(uuid[i]);
        if (i == 8 || i == 13 || i == 18 || i == 23) {
            if (character != '-') return std::nullopt;
            continue;
        }
        if (std::isxdigit(character) == 0) return std::nullopt;
        uuid[i] = static_cast<char>(std::toupper(character));
        digits.push_back(uuid[i]);
    }
    if (isOneCharacterRepeated(digits, "0F") || std::ranges::find(kFillerUuids, uuid) != kFillerUuids.end()) return std::nullopt;
    return uuid;
}

}  // namespace halvane::linux
