#include "util/Json.h"

#include <gtest/gtest.h>

#include <limits>

namespace halvane::util {
namespace {

TEST(Json, round_trip_keeps_kinds_and_the_order_of_keys) {
    const Bytes text = R"({"b":1,"a":[true,null,-2.5,"职场\n"],"c":{"":9223372036854775807}})";
    const auto value = Json::decode(text);
    ASSERT_TRUE(value) << value.error().description;
    EXPECT_EQ(Json::encode(*value), text);
}

TEST(Json, texts_and_numbers_alone_are_documents) {
    EXPECT_EQ(Json::decode("\"x\"").value(), Value("x"));
    EXPECT_EQ(Json::decode(" 7 ").value(), Value(7));
}

TEST(Json, texts_are_written_so_that_they_come_back) {
    struct Row {
        const char* text;
        const char* expected;
    };
    for (const Row& row :
         {Row{"", "\"\""}, Row{"plain", "\"plain\""}, Row{"a\"b", R"("a\"b")"}, Row{"a\\b", R"("a\\b")"}, Row{"\n\x01", R"("\n\u0001")"},
          Row{"\x7F", "\"\x7F\""}, Row{"\xE8\x81\x8C", "\"\xE8\x81\x8C\""}, Row{"/", "\"/\""}}) {
        EXPECT_EQ(Json::encode(row.text), row.expected);
        EXPECT_EQ(Json::encode(Dictionary{{row.text, 1}}), std::string("{") + row.expected + ":1}");
    }
    EXPECT_EQ(Json::encode(Dictionary{{"a", Dictionary()}, {"b", Value::List{Value::List{}, Dictionary(), nullptr, true, -1, 0.5}}}),
              R"({"a":{},"b":[[],{},null,true,-1,0.5]})");
    EXPECT_EQ(Json::encode(Value::List{std::numeric_limits<double>::infinity(), Value::Date{std::int64_t{1} << 60}}), "[null,null]");
}

TEST(Json, a_number_beyond_64_bits_becomes_a_double) {
    EXPECT_EQ(*Json::decode("18446744073709551615").value().real(), 18446744073709551615.0);
}

TEST(Json, a_later_equal_key_wins) { EXPECT_EQ(Json::encode(*Json::decode(R"({"a":1,"a":2})")), R"({"a":2})"); }

TEST(Json, refuses_what_is_not_one_valid_document) {
    const std::pair<const char*, Bytes> rows[] = {
        {"empty", ""},
        {"html", "<html>no</html>"},
        {"cut off", R"({"code":20)"},
        {"two values", "{} {}"},
        {"trailing comma", "[1,]"},
        {"invalid UTF-8", "\"\xC3\x28\""},
        {"embedded NUL", Bytes("{}\0{", 4)},
        {"deeper than any reply", Bytes(100'000, '[')},
    };
    for (const auto& [name, bytes] : rows) {
        SCOPED_TRACE(name);
        const auto result = Json::decode(bytes);
        ASSERT_FALSE(result);
        EXPECT_FALSE(result.error().description.empty());
    }
}

TEST(Json, writes_invalid_text_as_replacement_characters_and_bytes_as_base64) {
    EXPECT_EQ(Json::encode(Dictionary{{"t", std::string("a\xFF")}, {"d", Value::Data{"\x01\x02"}}}),
              "{\"t\":\"a\xEF\xBF\xBD\",\"d\":\"AQI=\"}");
}

}  // namespace
}  // namespace halvane::util
