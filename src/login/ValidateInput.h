#pragma once

#include "util/Value.h"

#include <cstdint>
#include <string_view>

namespace halvane::login {

/// What a person typed, checked for its shape: documents, telephones, names, addresses. Any thread.
///
/// A check is true when its pattern matches the whole text; a line feed at its end is refused like any other character that
/// the pattern does not name. Letters are A to Z in either case, digits 0 to 9 where nothing else is said; Chinese characters
/// are U+4E00 to U+9FA5. Texts are UTF-8, and what is not matches nothing. A text made to keep a pattern busy is given up as
/// not matching, and so may be one of more than 100,000 characters.
struct ValidateInput {
    /// Letters, digits and "._%+-", "@", letters, digits, "." and "-", then "." and 2 to 4 letters.
    static bool validateEmail(std::string_view text);
    /// A land line of 7 or 8 digits, or several run together, with or without area code and extension; or 1 and ten digits of
    /// any script.
    static bool validatePhone(std::string_view text);
    /// A licence plate: a Chinese character, a letter, four letters, digits or "_", and one more, which may be Chinese.
    static bool validateCarNo(std::string_view text);
    /// Chinese characters, up to U+9FFF.
    static bool validateCarType(std::string_view text);
    /// 6 to 20 letters or digits.
    static bool validateUserName(std::string_view text);
    /// 6 to 32 letters or digits.
    static bool validatePassword(std::string_view text);
    /// 4 to 8 Chinese characters.
    static bool validateNickname(std::string_view text);
    /// 15 digits, or 17 and a digit or X in either case.
    static bool validateIdentityCard(std::string_view text);
    /// 1 to 20 digits of any script, the first not a plain 0.
    static bool validateNumber(std::string_view text);
    /// At least 5 digits, the first not 0.
    static bool validateQQ(std::string_view text);
    /// At least 8 letters, digits or Chinese characters.
    static bool validateAddress(std::string_view text);
    /// 1 and ten digits of any script.
    static bool validateLinkPhone(std::string_view text);
    /// 2 to 32 letters, digits, Chinese characters, "_" or "·".
    static bool validateIdentityName(std::string_view text);
    /// The same, 2 to 64.
    static bool validateChannelName(std::string_view text);
    /// The same, 10 to 64.
    static bool validateRegisterAddress(std::string_view text);
    /// The same, one or more.
    static bool validateName(std::string_view text);
    /// A whole number from 1 on, in spite of its name; digits behind the first may be of any script.
    static bool validateNonnegative(std::string_view text);
    /// 4 digits.
    static bool validateFourNumber(std::string_view text);
    /// At least 2 Chinese characters, dots or round brackets.
    static bool validateIdentityCustomName(std::string_view text);
    /// H or M in either case and 8 or 10 digits.
    static bool validateIdentityHKMacao(std::string_view text);
    /// At least 8 digits.
    static bool validateIdentityTaiWan(std::string_view text);
    /// At least 6 letters or digits.
    static bool validateIdentityPassport(std::string_view text);
    /// At least 8 Chinese characters.
    static bool validateIdentityAddress(std::string_view text);
    /// At least 3 Chinese characters.
    static bool validateIdentityTaiwanAddress(std::string_view text);
    /// At least 2 Chinese characters.
    static bool validateIdentityPassporAddress(std::string_view text);
    /// Letters or digits, one or more.
    static bool validateIdentityNumAndLetter(std::string_view text);
    /// Six or more small letters d and nothing else. Meant for telephones; it is what it is.
    static bool validateIdentityConnectPhone(std::string_view text);
    /// A mobile telephone of 130 to 139, 150 to 159 without 154, 180, 182 and 185 to 189, or a land line with its area code,
    /// without anything between the digits. Behind what tells the range they may be of any script.
    static bool validateMobile(std::string_view text);

    // Of a reply's or a field's value; null is no value at all.
    /// No value, the null that stands for none, or the empty text.
    static bool validateNil(const util::Value* value);
    /// The null that stands for none.
    static bool isNullClassString(const util::Value* value);
    /// As `validateNil`, and a text of white space alone or that says "(null)", "<null>" or "null".
    static bool isBlankOrNullString(const util::Value* value);

    /// Whether at least `andMinCount` UTF-16 units are U+4E01 to U+9FFE.
    static bool isValidateChineseCount(std::string_view text, std::int64_t andMinCount);
};

}  // namespace halvane::login
