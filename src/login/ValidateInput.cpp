#include "login/ValidateInput.h"

#include "util/icu/Pattern.h"
#include "util/icu/UnicodeText.h"

#include <algorithm>

namespace halvane::login {

namespace {

/// A pattern as a template's argument.
template <std::size_t kSize>
struct Literal {
    constexpr Literal(const char (&text)[kSize]) { std::ranges::copy(text, characters); }
    char characters[kSize];
};

/// Each pattern is compiled when it is first asked for.
template <Literal kPattern>
bool covers(std::string_view text) {
    static const util::Pattern pattern(kPattern.characters);
    return pattern.covers(text);
}

bool isText(const util::Value* value, std::string_view text) {
    const auto* own = value == nullptr ? nullptr : value->text();
    return own != nullptr && *own == text;
}

}  // namespace

bool ValidateInput::validateEmail(std::string_view text) { return covers<R"([A-Z0-9a-z._%+-]+@[A-Za-z0-9.-]+\.[A-Za-z]{2,4})">(text); }

bool ValidateInput::validatePhone(std::string_view text) {
    return covers<R"(^(0[0-9]{2,3}\-)?([0-9]{7,8})+(\-[0-9]{1,4})?$|^1\d{10}$)">(text);
}

bool ValidateInput::validateCarNo(std::string_view text) {
    return covers<"^[一-龥]{1}[a-zA-Z]{1}[a-zA-Z_0-9]{4}[a-zA-Z_0-9_一-龥]$">(text);
}

bool ValidateInput::validateCarType(std::string_view text) { return covers<"^[一-鿿]+$">(text); }

bool ValidateInput::validateUserName(std::string_view text) { return covers<"^[A-Za-z0-9]{6,20}+$">(text); }

bool ValidateInput::validatePassword(std::string_view text) { return covers<"^[a-zA-Z0-9]{6,32}+$">(text); }

bool ValidateInput::validateNickname(std::string_view text) { return covers<"^[一-龥]{4,8}$">(text); }

bool ValidateInput::validateIdentityCard(std::string_view text) { return covers<"(^[0-9]{15}$|^[0-9]{17}[0-9xX]$)">(text); }

bool ValidateInput::validateNumber(std::string_view text) { return covers<R"(^(?!0)\d{1,20}$)">(text); }

bool ValidateInput::validateQQ(std::string_view text) { return covers<"^[1-9][0-9]{4,}$">(text); }

bool ValidateInput::validateAddress(std::string_view text) { return covers<"^[a-zA-Z0-9一-龥]{8,}$">(text); }

bool ValidateInput::validateLinkPhone(std::string_view text) { return covers<R"(^1\d{10}$)">(text); }

bool ValidateInput::validateIdentityName(std::string_view text) { return covers<"^[a-zA-Z0-9一-龥_·]{2,32}+$">(text); }

bool ValidateInput::validateChannelName(std::string_view text) { return covers<"^[a-zA-Z0-9一-龥_·]{2,64}+$">(text); }

bool ValidateInput::validateRegisterAddress(std::string_view text) { return covers<"^[a-zA-Z0-9一-龥_·]{10,64}+$">(text); }

bool ValidateInput::validateName(std::string_view text) { return covers<"^[a-zA-Z0-9一-龥_·]+$">(text); }

bool ValidateInput::validateNonnegative(std::string_view text) { return covers<R"(^[1-9]\d*$)">(text); }

bool ValidateInput::validateFourNumber(std::string_view text) { return covers<"^[0-9]{4}$">(text); }

bool ValidateInput::validateIdentityCustomName(std::string_view text) { return covers<"^[一-龥.()]{2,}$">(text); }

bool ValidateInput::validateIdentityHKMacao(std::string_view text) { return covers<"^[HMhm]{1}([0-9]{10}|[0-9]{8})$">(text); }

bool ValidateInput::validateIdentityTaiWan(std::string_view text) { return covers<"^[0-9]{8,}$">(text); }

bool ValidateInput::validateIdentityPassport(std::string_view text) { return covers<"^[a-zA-Z0-9]{6,}$">(text); }

bool ValidateInput::validateIdentityAddress(std::string_view text) { return covers<"^[一-龥]{8,}$">(text); }

bool ValidateInput::validateIdentityTaiwanAddress(std::string_view text) { return covers<"^[一-龥]{3,}$">(text); }

bool ValidateInput::validateIdentityPassporAddress(std::string_view text) { return covers<"^[一-龥]{2,}$">(text); }

bool ValidateInput::validateIdentityNumAndLetter(std::string_view text) { return covers<"^[a-zA-Z0-9]+$">(text); }

bool ValidateInput::validateIdentityConnectPhone(std::string_view text) {
    // U+0001 stands where a reference back was meant, and a letter where the digits were. It stays as it has always been stored.
    return covers<"^(?=.*d+)(?!.*?([d])\x01{5})[d]{6,}$">(text);
}

bool ValidateInput::validateMobile(std::string_view text) {
    return covers<R"(^1(3[0-9]|5[0-35-9]|8[025-9])\d{8}$)">(text) ||         // any mobile
           covers<R"(^0(10|2[0-5789]|\d{3})\d{7,8}$)">(text) ||              // land line
           covers<R"(^1((33|53|8[09])[0-9]|349)\d{7}$)">(text) ||            // a carrier's
           covers<R"(^1(3[0-2]|5[256]|8[56])\d{8}$)">(text) ||               // another's
           covers<R"(^1(34[0-8]|(3[5-9]|5[017-9]|8[278])\d)\d{7}$)">(text);  // the third's
}

bool ValidateInput::validateNil(const util::Value* value) { return value == nullptr || value->isNull() || isText(value, ""); }

bool ValidateInput::isNullClassString(const util::Value* value) { return value != nullptr && value->isNull(); }

bool ValidateInput::isBlankOrNullString(const util::Value* value) {
    if (validateNil(value)) return true;
    const auto* text = value->text();
    return text != nullptr && (util::isWhiteSpace(*text) || *text == "(null)" || *text == "<null>" || *text == "null");
}

bool ValidateInput::isValidateChineseCount(std::string_view text, std::int64_t andMinCount) {
    constexpr std::uint16_t kFirst = 0x4E01;
    constexpr std::uint16_t kCount = 0x51FE;
    const auto isCounted = [](char16_t unit) { return static_cast<std::uint16_t>(unit - kFirst) < kCount; };
    return std::ranges::count_if(util::utf16Of(text), isCounted) >= andMinCount;
}

}  // namespace halvane::login
