#include "util/icu/NumberText.h"
#include "util/icu/TextEncoding.h"

#include <gtest/gtest.h>

namespace halvane::util {
namespace {

TEST(NumberText, tells_digits_integers_and_floating_numbers) {
    const std::tuple<const char*, std::string, bool, bool, bool> rows[] = {
        // isNum, isPureInt, isPureFloat
        {"empty", "", true, false, false},
        {"digits", "0123", true, true, true},
        {"digits of other scripts", "１٣", true, false, false},
        {"beyond the plane", "𝟙𝟚", true, false, false},
        {"letter between", "1a1", false, false, false},
        {"letter behind", "1a", false, false, false},
        {"a half and a power, which are no decimal digits", "½²", false, false, false},
        {"Chinese numeral", "一", false, false, false},
        {"signs", "-12", false, true, true},
        {"plus", "+12", false, true, true},
        {"two signs", "--1", false, false, false},
        {"sign alone", "-", false, false, false},
        {"blanks around", " 12\n", false, true, true},
        {"blank between", "1 2", false, false, false},
        {"fraction", "1.5", false, false, true},
        {"no whole part", ".5", false, false, true},
        {"no fraction", "5.", false, false, true},
        {"point alone", ".", false, false, false},
        {"two points", "1.2.3", false, false, false},
        {"exponent", "1e5", false, false, true},
        {"exponent in a capital letter", "1E5", false, false, true},
        {"exponent with sign", "-1.5E-3", false, false, true},
        {"exponent that lacks its number", "1e", false, false, false},
        {"comma", "1,5", false, false, false},
        {"hexadecimal", "0x10", false, false, false},
        {"named", "inf", false, false, false},
        {"larger than any type", "123456789012345678901234567890", true, true, true},
        {"NUL", std::string("1\0", 2), false, false, false},
        {"no UTF-8", "1\xFF", false, false, false},
    };
    for (const auto& [name, text, num, integer, floating] : rows) {
        EXPECT_EQ(NumberText::isNum(text), num) << name;
        EXPECT_EQ(NumberText::isPureInt(text), integer) << name;
        EXPECT_EQ(NumberText::isPureFloat(text), floating) << name;
    }
    EXPECT_TRUE(NumberText::isNum(std::string(10'000'000, '7')) && NumberText::isPureFloat(std::string(10'000'000, '7')));
}

TEST(TextEncoding, gives_the_bytes_of_an_encoding_or_none) {
    using Text = std::optional<std::string>;
    const std::tuple<const char*, Text, std::string, Bytes> rows[] = {
        {"as it is", "é一😀", "UTF-8", "é一😀"},
        {"two bytes each", "a一", "UTF-16LE", Bytes("a\0\0\x4e", 4)},
        {"in another order, surrogates too", "😀", "UTF-16BE", Bytes("\xd8\x3d\xde\x00", 4)},
        {"Chinese", "中文", "GB18030", "\xd6\xd0\xce\xc4"},
        {"Western", "é", "ISO-8859-1", "\xe9"},
        {"a name in other letters", "中", "gbk", "\xd6\xd0"},
        {"absent", std::nullopt, "UTF-8", ""},
        {"absent, with a mark of order", std::nullopt, "UTF-16", ""},
        {"a NUL is a character", std::string("a\0b", 3), "US-ASCII", Bytes("a\0b", 3)},
        {"no form for it", "é", "US-ASCII", ""},
        {"no form for the last", "abc一", "ISO-8859-1", ""},
        {"no form for what nobody sees", "a\u200B", "US-ASCII", ""},
        {"no such encoding", "a", "klingon", ""},
        {"more than a name", "a", "UTF-8,swaplfnl", ""},
        {"a name and more behind a NUL", "a", std::string("UTF-8\0x", 7), ""},
        {"no name", "a", "", ""},
        {"no UTF-8", "a\xFF", "UTF-8", ""},
    };
    for (const auto& [name, text, encoding, bytes] : rows) {
        EXPECT_EQ(TextEncoding::notNulldataUsingEncoding(text, encoding), bytes) << name;
    }
    EXPECT_EQ(TextEncoding::notNulldataUsingEncoding(std::string(10'000'000, 'a'), "UTF-16LE").size(), 20'000'000U);
}

}  // namespace
}  // namespace halvane::util
