#include "util/SizeText.h"

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace halvane::util
