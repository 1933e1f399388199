#include "util/icu/Pattern.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <thread>
#include <vector>

namespace halvane::util {
namespace {

TEST(Pattern, covers_the_whole_text_or_does_not_match) {
    const std::tuple<const char*, const char*, std::string, bool> rows[] = {
        {"all of it", "a+", "aaa", true},
        {"the beginning", "a+", "aab", false},
        {"the end", "a+", "baa", false},
        {"an alternative that is shorter first", "a|ab", "ab", true},
        {"before a line feed", "^a$", "a\n", false},
        {"line by line", "^a$", "a\na", false},
        {"nothing", "", "", true},
        {"nothing in something", "", "a", false},
        {"digits of any script", "\\d+", "1１١", true},
        {"a character of four bytes is one", ".", "😀", true},
        {"a NUL is a character", "a.b", std::string("a\0b", 3), true},
        {"U+FFFD is one as well", "a.b", "a\uFFFDb", true},
        {"what is no UTF-8 is none", "a.*b", "a\xFF-b", false},
    };
    for (const auto& [name, pattern, text, covered] : rows) EXPECT_EQ(Pattern(pattern).covers(text), covered) << name;
}

TEST(Pattern, what_would_take_for_ever_is_given_up) {
    const std::string many(200, 'a');
    EXPECT_FALSE(Pattern("(a+)+").covers(many + "!"));
    EXPECT_FALSE(Pattern("(a|a)*").covers(many + "!"));
    EXPECT_FALSE(Pattern("(.*)(.*)(.*)(.*)(.*)x").covers(std::string(10'000'000, 'a'))) << "time";
    EXPECT_FALSE(Pattern("([0-9]{7,8})+").covers(std::string(8'000'000, '1'))) << "memory";
    EXPECT_TRUE(Pattern("(a+)+").covers(many)) << "what matches is found at once";
}

TEST(Pattern, that_is_none_is_a_fault_of_the_program) { EXPECT_THROW(Pattern("(a"), std::invalid_argument); }

TEST(Pattern, is_used_by_many_threads_at_once) {
    const Pattern pattern("[0-9]{3}");
    std::atomic<int> right = 0;
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([&] {
                for (int k = 0; k < 500; ++k) right += pattern.covers("123") && !pattern.covers("12a") ? 1 : 0;
            });
        }
    }
    EXPECT_EQ(right, 4 * 500);
}

}  // namespace
}  // namespace halvane::util
