#include "util/SizeText.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace halvane::util {
namespace {

TEST(SizeText, counts_read_in_the_unit_that_fits_before_rounding) {
    const std::tuple<const char*, std::int64_t, const char*> rows[] = {
        {"nothing", 0, "0.00KB"},
        {"less than a unit", 512, "0.50KB"},
        {"negative", -3 * 1048576LL, "-3072.00KB"},
        {"last of KB", 1048575, "1024.00KB"},
        {"first of MB", 1048576, "1.00MB"},
        {"two decimals", 1234567, "1.18MB"},
        {"last of MB", 1073741823, "1024.00MB"},
        {"first of GB", 1073741824, "1.00GB"},
        {"nothing beyond GB", 5LL << 40, "5120.00GB"},
        {"largest", std::numeric_limits<std::int64_t>::max(), "8589934592.00GB"},
        {"smallest", std::numeric_limits<std::int64_t>::min(), "-9007199254740992.00KB"},
    };
    for (const auto& [name, bytes, text] : rows) {
        EXPECT_EQ(SizeText::converBytesToSize(bytes), text) << name;
        EXPECT_EQ(SizeText::converStringToSize(std::to_string(bytes)), text) << name << ", as text";
        EXPECT_EQ(SizeText::formatSize(static_cast<double>(bytes)), text) << name << ", as a floating number";
        EXPECT_EQ(SizeText::formatSize(std::to_string(bytes)), text) << name << ", as a floating number in a text";
    }
}

TEST(SizeText, texts_count_as_far_as_they_are_a_number) {
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"empty", "", "0.00KB"},
        {"no number", "many", "0.00KB"},
        {"blanks and sign", " \t+1048576", "1.00MB"},
        {"a minus sign", " -1024", "-1.00KB"},
        {"a unit behind", "2048KB", "2.00KB"},
        {"a fraction behind", "1024.99", "1.00KB"},
        {"a separator", "1,048,576", "0.00KB"},
        {"too large", "99999999999999999999", "8589934592.00GB"},
        {"too small", "-99999999999999999999", "-9007199254740992.00KB"},
    };
    for (const auto& [name, bytes, text] : rows) EXPECT_EQ(SizeText::converStringToSize(bytes), text) << name;
}

TEST(SizeText, floating_numbers_have_sizes_and_what_is_none_has_dashes) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    const std::tuple<const char*, double, const char*> numbers[] = {
        {"a part of a byte", 0.5, "0.00KB"}, {"just below MB", 1048575.999, "1024.00KB"}, {"just below GB", 1073741823.9, "1024.00MB"},
        {"infinite", kInfinity, "infGB"},    {"below everything", -kInfinity, "-infKB"},  {"no number", std::nan(""), "--"},
    };
    for (const auto& [name, bytes, text] : numbers) EXPECT_EQ(SizeText::formatSize(bytes), text) << name;
    const std::tuple<const char*, std::string, const char*> texts[] = {
        {"a fraction", "1536.5", "1.50KB"},
        {"an exponent", "1e6", "976.56KB"},
        {"blanks and sign", " \t+2048", "2.00KB"},
        {"a unit behind", "2048 bytes", "2.00KB"},
        {"too small to tell", "1e-999", "0.00KB"},
        {"too large to tell", "1e999", "infGB"},
        {"empty", "", "--"},
        {"words", "many", "--"},
        {"named so", "nan", "--"},
        {"sign alone", "-", "--"},
        {"digits of another script", "１２", "--"},
        {"behind a NUL",
         std::string("\0"
                     "1",
                     2),
         "--"},
    };
    for (const auto& [name, bytes, text] : texts) EXPECT_EQ(SizeText::formatSize(bytes), text) << name;
}

TEST(SizeText, rates_lose_two_characters_and_grow_by_their_unit) {
    constexpr auto kMost = std::numeric_limits<std::uint64_t>::max();
    const std::tuple<const char*, std::string, std::uint64_t> rows[] = {
        {"KB", "12.5KB/s", 12800},
        {"kB", "12.5kB/s", 12800},
        {"MB", "3MB/s", 3145728},
        {"GB", "1.5GB/s", 1610612736},
        {"small kb is no unit", "12.5kb/s", 12},
        {"a small m is none either", "3mB/s", 3},
        {"one letter takes a digit along", "512B/s", 51},
        {"no unit", "512/s", 5},
        {"two digits", "51/s", 0},
        {"one character", "5/s", 0},
        {"begins with a slash", "/s", 0},
        {"empty", "", 0},
        {"a unit alone", "KB/s", 0},
        {"no slash", "12.5KB", 12800},
        {"a second slash", "1MB/2GB/s", 1048576},
        {"a space before the unit", "2 KB/s", 2048},
        {"a space behind it", "20KB /s", 20},
        {"blanks before", "  2KB/s", 2048},
        {"part of a byte", "0.0005KB/s", 0},
        {"exponent", "1e3KB/s", 1024000},
        {"precision of a float", "16777217KB/s", 16777216ULL * 1024},
        {"negative", "-3KB/s", 0},
        {"too large", "99999999999GB/s", kMost},
        {"beyond a float", "1e300KB/s", kMost},
        {"no number", "fastKB/s", 0},
        {"named so", "infKB/s", 0},
        {"one letter of three bytes and a digit", "125千/s", 12},
        {"one of four bytes counts two", "125😀/s", 125},
        {"broken bytes", "125\xA0\xA0\xA0/s", 125},
        {"NUL", std::string("7\0KB/s", 6), 7168},
    };
    for (const auto& [name, rate, bytes] : rows) EXPECT_EQ(SizeText::formateRate(rate), bytes) << name;
}

}  // namespace
}  // namespace halvane::util
