#include "util/Text.h"
#include "util/Base64.h"
#include "util/StyledText.h"

#include <gtest/gtest.h>

namespace halvane::util {
namespace {

TEST(Text, percent_escapes_follow_the_old_rules) {
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"a URL stays", "http://h:80/p/a?b=c&d=e;f,g@h!$'()*+~", "http://h:80/p/a?b=c&d=e;f,g@h!$'()*+~"},
        {"space and quotes", "a b\"c", "a%20b%22c"},
        {"an existing escape is escaped again", "a%20b", "a%2520b"},
        {"fragment and brackets", "#[x]{y}|\\^`<>", "%23%5Bx%5D%7By%7D%7C%5C%5E%60%3C%3E"},
        {"UTF-8", "职", "%E8%81%8C"},
    };
    for (const auto& [name, text, escaped] : rows) EXPECT_EQ(addingPercentEscapes(text), escaped) << name;
}

TEST(Text, utf8_is_checked_to_the_letter) {
    for (const char* good : {"", "a", "é", "职", "\xF0\x9F\x98\x80"}) EXPECT_TRUE(isValidUtf8(good)) << good;
    for (const char* bad : {"\x80", "\xC0\x80", "\xE8\x81", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xFF", "a\xC3("})
        EXPECT_FALSE(isValidUtf8(bad));
}

TEST(Text, replacement_takes_every_occurrence_and_does_not_read_its_own_output) {
    EXPECT_EQ(replaced("aaa", "a", "aa"), "aaaaaa");
    EXPECT_EQ(replaced("a{x}b{x}", "{x}", ""), "ab");
    EXPECT_EQ(replaced("abc", "", "z"), "abc");
}

TEST(Base64, round_trips_and_refuses_what_is_not_base64) {
    for (const std::string& bytes :
         {std::string(), std::string("a"), std::string("ab"), std::string("abc"), std::string("\0\xFF\x10", 3)}) {
        EXPECT_EQ(Base64::decode(Base64::encode(bytes)), bytes);
    }
    EXPECT_FALSE(Base64::decode("abc"));
    EXPECT_FALSE(Base64::decode("!!!!"));
}

TEST(StyledText, styles_the_first_occurrence_only) {
    StyledText text{"ab ab", {}};
    text.styleFirst("ab", {.fontSize = 19});
    text.styleFirst("", {.fontSize = 1});
    text.styleFirst("zz", {.fontSize = 1});
    ASSERT_EQ(text.runs.size(), 1U);
    EXPECT_EQ(text.runs[0].offset, 0U);
    EXPECT_EQ(text.runs[0].length, 2U);
}

}  // namespace
}  // namespace halvane::util
