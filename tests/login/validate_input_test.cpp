#include "login/ValidateInput.h"

#include "support/RepeatedText.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <vector>

namespace halvane::login {
namespace {

using Check = bool (*)(std::string_view);
using V = ValidateInput;
using test::times;

const std::string kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
const std::string kDigits = "0123456789";
const std::string kBoth = kLetters + kDigits;
constexpr char32_t kNoChinese = 0;
constexpr char32_t kChinese = 0x9FA5;  // the last that names may have
constexpr char32_t kAllChinese = 0x9FFF;

/// A character of the basic plane in UTF-8.
std::string utf8Of(char32_t c) {
    if (c < 0x80) return {static_cast<char>(c)};
    if (c < 0x800) return {static_cast<char>(0xC0 | (c >> 6)), static_cast<char>(0x80 | (c & 0x3F))};
    return {static_cast<char>(0xE0 | (c >> 12)), static_cast<char>(0x80 | ((c >> 6) & 0x3F)), static_cast<char>(0x80 | (c & 0x3F))};
}

struct Length {
    const char* name;
    Check check;
    const char* piece;
    std::size_t least;
    std::size_t most;
};

constexpr std::size_t kAny = std::numeric_limits<std::size_t>::max();
constexpr Length kLengths[] = {
    {"car type", V::validateCarType, "鿿", 1, kAny},
    {"user name", V::validateUserName, "a", 6, 20},
    {"password", V::validatePassword, "a", 6, 32},
    {"nickname", V::validateNickname, "一", 4, 8},
    {"number", V::validateNumber, "9", 1, 20},
    {"QQ", V::validateQQ, "1", 5, kAny},
    {"address", V::validateAddress, "路", 8, kAny},
    {"identity name", V::validateIdentityName, "·", 2, 32},
    {"channel name", V::validateChannelName, "一", 2, 64},
    {"registered address", V::validateRegisterAddress, "_", 10, 64},
    {"name", V::validateName, "龥", 1, kAny},
    {"from one on", V::validateNonnegative, "1", 1, kAny},
    {"four digits", V::validateFourNumber, "0", 4, 4},
    {"custom name", V::validateIdentityCustomName, "一", 2, kAny},
    {"Taiwan", V::validateIdentityTaiWan, "1", 8, kAny},
    {"passport", V::validateIdentityPassport, "a", 6, kAny},
    {"identity address", V::validateIdentityAddress, "一", 8, kAny},
    {"Taiwan address", V::validateIdentityTaiwanAddress, "一", 3, kAny},
    {"passport address", V::validateIdentityPassporAddress, "一", 2, kAny},
    {"letters and digits", V::validateIdentityNumAndLetter, "a", 1, kAny},
    {"connect phone", V::validateIdentityConnectPhone, "d", 6, kAny},
};

TEST(ValidateInput, lengths_end_where_they_should) {
    constexpr std::size_t kLong = 100'000;
    for (const auto& [name, check, piece, least, most] : kLengths) {
        EXPECT_FALSE(check("")) << name;
        EXPECT_FALSE(check(times(least - 1, piece))) << name;
        EXPECT_TRUE(check(times(least, piece))) << name;
        EXPECT_TRUE(check(times(most == kAny ? least + 1 : most, piece))) << name;
        EXPECT_EQ(check(times(most == kAny ? kLong : most + 1, piece)), most == kAny) << name;
    }
}

/// One place in a text, and what may stand there.
struct Place {
    const char* name;
    Check check;
    std::string before;
    std::string after;
    std::string allowed;                ///< of ASCII
    char32_t lastChinese = kNoChinese;  ///< from U+4E00 on
    bool middleDot = false;
    bool foreignDigits = false;
};

const Place kPlaces[] = {
    {"email, first", V::validateEmail, "", "@b.cc", kBoth + "._%+-"},
    {"email, host", V::validateEmail, "a@", ".cc", kBoth + ".-"},
    {"email, last part", V::validateEmail, "a@b.", "c", kLetters},
    {"email, end", V::validateEmail, "a@b.c", "", kLetters},
    {"phone, area", V::validatePhone, "0", "0-1234567", kDigits},
    {"phone, number", V::validatePhone, "", "234567", kDigits},
    {"phone, extension", V::validatePhone, "12345678-", "", kDigits},
    {"phone, mobile", V::validatePhone, "1", "123456789", kDigits, kNoChinese, false, true},
    {"car, province", V::validateCarNo, "", "A12345", "", kChinese},
    {"car, town", V::validateCarNo, "京", "12345", kLetters},
    {"car, number", V::validateCarNo, "京A", "2345", kBoth + "_"},
    {"car, number's end", V::validateCarNo, "京A123", "5", kBoth + "_"},
    {"car, end", V::validateCarNo, "京A1234", "", kBoth + "_", kChinese},
    {"car type", V::validateCarType, "大", "", "", kAllChinese},
    {"user name", V::validateUserName, "", "bc123", kBoth},
    {"password", V::validatePassword, "", "bc123", kBoth},
    {"nickname", V::validateNickname, "", "一一一", "", kChinese},
    {"identity, short", V::validateIdentityCard, "", times(14, "1"), kDigits},
    {"identity, long", V::validateIdentityCard, "", times(16, "1") + "x", kDigits},
    {"identity, end", V::validateIdentityCard, times(17, "1"), "", kDigits + "xX"},
    {"number, first", V::validateNumber, "", "1", "123456789", kNoChinese, false, true},
    {"number, next", V::validateNumber, "1", "", kDigits, kNoChinese, false, true},
    {"QQ, first", V::validateQQ, "", "9999", "123456789"},
    {"QQ, next", V::validateQQ, "9", "999", kDigits},
    {"address", V::validateAddress, "", "a1路a1路a", kBoth, kChinese},
    {"link phone, first", V::validateLinkPhone, "", "2345678901", "1"},
    {"link phone, next", V::validateLinkPhone, "1", "345678901", kDigits, kNoChinese, false, true},
    {"identity name", V::validateIdentityName, "", "b", kBoth + "_", kChinese, true},
    {"channel name", V::validateChannelName, "", "b", kBoth + "_", kChinese, true},
    {"registered address", V::validateRegisterAddress, "", times(9, "路"), kBoth + "_", kChinese, true},
    {"name", V::validateName, "", "", kBoth + "_", kChinese, true},
    {"from one on, first", V::validateNonnegative, "", "", "123456789"},
    {"from one on, next", V::validateNonnegative, "1", "", kDigits, kNoChinese, false, true},
    {"four digits", V::validateFourNumber, "", "000", kDigits},
    {"custom name", V::validateIdentityCustomName, "", "二", ".()", kChinese},
    {"Hong Kong, letter", V::validateIdentityHKMacao, "", "12345678", "HMhm"},
    {"Hong Kong, eight", V::validateIdentityHKMacao, "h", "2345678", kDigits},
    {"Hong Kong, ten", V::validateIdentityHKMacao, "M", "234567890", kDigits},
    {"Taiwan", V::validateIdentityTaiWan, "", "2345678", kDigits},
    {"passport", V::validateIdentityPassport, "", "bcdef", kBoth},
    {"identity address", V::validateIdentityAddress, "", times(7, "一"), "", kChinese},
    {"Taiwan address", V::validateIdentityTaiwanAddress, "", "一一", "", kChinese},
    {"passport address", V::validateIdentityPassporAddress, "", "一", "", kChinese},
    {"letters and digits", V::validateIdentityNumAndLetter, "", "", kBoth},
    {"connect phone", V::validateIdentityConnectPhone, "ddd", "ddd", "d"},
};

TEST(ValidateInput, each_place_takes_its_characters_and_no_other) {
    std::vector<char32_t> all = {0xB6,   0xB7,   0xB8,   0x4DFF, 0x4E00, 0x4E01, 0x9FA5, 0x9FA6,
                                 0x9FFF, 0xA000, 0x0660, 0xFF10, 0xFF19, 0xFF21, 0xFFFD};
    for (char32_t c = 0; c < 0x80; ++c) all.push_back(c);
    const auto isForeignDigit = [](char32_t c) { return c == 0x0660 || c == 0xFF10 || c == 0xFF19; };
    for (const auto& place : kPlaces) {
        for (const char32_t c : all) {
            const bool allowed = (c < 0x80 && place.allowed.find(static_cast<char>(c)) != std::string::npos) ||
                                 (c >= 0x4E00 && c <= place.lastChinese) || (c == 0xB7 && place.middleDot) ||
                                 (isForeignDigit(c) && place.foreignDigits);
            EXPECT_EQ(place.check(place.before + utf8Of(c) + place.after), allowed)
                << place.name << ", U+" << std::hex << static_cast<unsigned>(c);
        }
        for (const char* beyond : {"\xFF", "\xE4\xB8", "😀", "𠀀"})
            EXPECT_FALSE(place.check(place.before + beyond + place.after)) << place.name;
    }
}

struct Shapes {
    const char* name;
    Check check;
    std::vector<std::string> accepted;
    std::vector<std::string> refused;
};

const Shapes kShapes[] = {
    {"email",
     V::validateEmail,
     {"a@b.cc", "a@b.info", "A.b_c%d+e-f9@mail.example-1.com", "a@b.c.de", ".@-.ab"},
     {"a@b.c", "a@b.abcde", "@b.cc", "a@.cc", "a@bcc", "a@b@c.de", "a b@c.de", "a@b.cc,d@e.ff"}},
    {"phone",
     V::validatePhone,
     {"1234567", "12345678", "010-1234567", "0755-12345678", "12345678-1", "0755-12345678-1234", "12345671234567", "123456781234567",
      "12345678901"},
     {"", "-1", "010-", "123456", "123456789", "01-1234567", "07551-1234567", "1755-1234567", "12345678-", "12345678-12345", "123456789012",
      "11234567890-1", "0755 12345678", "22345678901"}},
    {"car number", V::validateCarNo, {"京A12345", "粤B_1_2港", "龥zABCD_"}, {"京A1234", "京A123456", "A京12345", "京京A2345"}},
    {"identity card",
     V::validateIdentityCard,
     {times(15, "1"), times(18, "1"), times(17, "1") + "x"},
     {times(14, "1"), times(16, "1"), times(17, "1"), times(19, "1"), times(14, "1") + "x", times(15, "1") + "x"}},
    {"Hong Kong and Macao",
     V::validateIdentityHKMacao,
     {"H12345678", "m1234567890"},
     {"H1234567", "H123456789", "H12345678901", "12345678", "HM12345678"}},
    {"link phone", V::validateLinkPhone, {"12345678901"}, {"1234567890", "123456789012"}},
    {"from one on", V::validateNonnegative, {"10"}, {"0", "01", "-1", "+1", "1.5"}},
    {"connect phone",
     V::validateIdentityConnectPhone,
     {"dddddd"},
     {"123456", "13812345678", "dddddd\x01\x01\x01\x01\x01",
      "d\x01\x01\x01\x01\x01"
      "ddddd"}},
};

TEST(ValidateInput, texts_have_the_whole_shape_or_are_refused) {
    for (const auto& [name, check, accepted, refused] : kShapes) {
        for (const auto& text : refused) EXPECT_FALSE(check(text)) << name << " refuses \"" << text << '"';
        for (const auto& text : accepted) {
            EXPECT_TRUE(check(text)) << name << " accepts \"" << text << '"';
            for (const std::string& with :
                 {text + "\n", "\n" + text, text + " ", " " + text, text + std::string(1, '\0'), text + "\r\n" + text})
                EXPECT_FALSE(check(with)) << name << " refuses \"" << with << '"';
        }
    }
}

/// What the five ranges accept together, told in another way than by their patterns.
bool isMobile(const std::string& number) {
    const int prefix = std::stoi(number.substr(0, 3));
    const bool isRange = (prefix >= 130 && prefix <= 139) || (prefix >= 150 && prefix <= 159 && prefix != 154) || prefix == 180 ||
                         prefix == 182 || (prefix >= 185 && prefix <= 189);
    const bool isShortArea = prefix == 10 || (prefix >= 20 && prefix <= 29 && prefix != 26);
    const bool isLandLine = number[0] == '0' && (number.size() == 11 || number.size() == 12 || (number.size() == 10 && isShortArea));
    return isLandLine || (number.size() == 11 && isRange);
}

TEST(ValidateInput, mobiles_of_every_beginning_and_length) {
    for (int prefix = 0; prefix < 1000; ++prefix) {
        for (std::size_t length = 9; length <= 13; ++length) {
            std::string number = std::to_string(1000 + prefix).substr(1) + times(length - 3, "1");
            EXPECT_EQ(V::validateMobile(number), isMobile(number)) << number;
            if (!isMobile(number)) continue;
            // Behind what tells the range, digits may be of any script.
            const std::size_t exact = number[0] == '0' && length > 10 ? 1 : 3;
            for (std::size_t i = 0; i < length; ++i) {
                const auto with = [&](const char* other) { return std::string(number).replace(i, 1, other); };
                EXPECT_EQ(V::validateMobile(with("٣")), i >= exact) << number << ", " << i;
                for (const char* other : {"/", ":", "a", "-", "\xFF"}) EXPECT_FALSE(V::validateMobile(with(other))) << number << ", " << i;
            }
            EXPECT_FALSE(V::validateMobile(number + "\n") || V::validateMobile(" " + number)) << number;
        }
    }
}

TEST(ValidateInput, nothing_and_what_stands_for_it) {
    const std::tuple<const char*, util::Value, bool, bool, bool> rows[] = {
        // value, nil, null's object, blank
        {"null's object", {}, true, true, true},
        {"empty", "", true, false, true},
        {"spaces", "   ", false, false, true},
        {"tab and line ends", "\t\r\n", false, false, true},
        {"spaces of other scripts", "\u3000\u00A0\u2003", false, false, true},
        {"(null)", "(null)", false, false, true},
        {"<null>", "<null>", false, false, true},
        {"null", "null", false, false, true},
        {"NULL", "NULL", false, false, false},
        {"null with a space", " null", false, false, false},
        {"a NUL", std::string(1, '\0'), false, false, false},
        {"no UTF-8", "\xFF", false, false, false},
        {"a space without width", "\u200B", false, false, false},
        {"text between spaces", " x ", false, false, false},
        {"zero", 0, false, false, false},
        {"false", false, false, false, false},
        {"an empty list", util::Value::List(), false, false, false},
    };
    for (const auto& [name, value, isNil, isNullObject, isBlank] : rows) {
        EXPECT_EQ(V::validateNil(&value), isNil) << name;
        EXPECT_EQ(V::isNullClassString(&value), isNullObject) << name;
        EXPECT_EQ(V::isBlankOrNullString(&value), isBlank) << name;
    }
    EXPECT_TRUE(V::validateNil(nullptr) && V::isBlankOrNullString(nullptr) && !V::isNullClassString(nullptr)) << "no value";
}

TEST(ValidateInput, chinese_characters_are_counted_between_its_bounds) {
    const std::tuple<const char*, std::string, int> rows[] = {
        {"empty", "", 0},
        {"none", "abc é ㄅ ア 한 ，。", 0},
        {"below the first", "一丁", 1},  // U+4E00, U+4E01
        {"beyond the last", "\u9FFE\u9FFF", 1},
        {"beyond what names allow", "龥龦", 2},
        {"beyond the plane, as two units", "𠀀𠮷", 0},
        {"compatibility characters", "\uF900", 0},
        {"among others", "a丁b丁\n丁", 3},
        {"behind a NUL and broken bytes", std::string("\0\xE4\xB8", 3) + "丁", 1},
    };
    for (const auto& [name, text, count] : rows) {
        EXPECT_TRUE(V::isValidateChineseCount(text, count)) << name;
        EXPECT_FALSE(V::isValidateChineseCount(text, count + 1)) << name;
        EXPECT_TRUE(V::isValidateChineseCount(text, -1)) << name;
    }
    EXPECT_TRUE(V::isValidateChineseCount(times(3'000'000, "龥"), 3'000'000));
}

/// A hang would show as the end of the test's time.
TEST(ValidateInput, texts_made_to_keep_patterns_busy_are_refused) {
    constexpr std::size_t kMany = 5'000'000;
    const std::map<std::string, std::string> texts = {
        {"digits in runs of seven and eight", times(400, "1") + "!"},
        {"many digits", times(kMany, "12") + "!"},
        {"dots", "a@" + times(kMany, "a.") + "!"},
        {"letters d", times(kMany, "dd") + "!"},
        {"letters d between what would have been references", times(kMany / 5, "d\x01\x01\x01\x01") + "!"},
        {"Chinese characters", times(kMany / 2, "一龥") + "!"},
        {"NULs", std::string(2 * kMany, '\0')},
        {"no UTF-8", std::string(2 * kMany, '\xE4')},
    };
    const Check checks[] = {
        V::validateEmail, V::validatePhone, V::validateNonnegative, V::validateIdentityCustomName, V::validateIdentityConnectPhone,
        V::validateMobile};
    for (const auto& [name, text] : texts) {
        for (std::size_t i = 0; i < std::size(checks); ++i) EXPECT_FALSE(checks[i](text)) << name << ", check " << i;
    }
}

TEST(ValidateInput, long_texts_of_many_parts_are_not_given_up) {
    EXPECT_TRUE(V::validateEmail(times(50'000, "a") + "@" + times(25'000, "b.") + "com"));
    EXPECT_TRUE(V::validatePhone("010-" + times(12'500, "12345678") + "-1"));
}

}  // namespace
}  // namespace halvane::login
