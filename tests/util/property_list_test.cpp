#include "util/KeyedArchive.h"
#include "util/PropertyList.h"
#include "util/Text.h"

#include <gtest/gtest.h>

namespace halvane::util {
namespace {

TEST(PropertyList, keeps_every_kind_through_a_file) {
    const Dictionary written{{"name", "a<b>&\"职场"},
                             {"on", true},
                             {"size", -42},
                             {"ratio", 0.5},
                             {"when", Value::Date{1'700'000'000}},
                             {"bytes", Value::Data{Bytes("\0\x01\xFF", 3)}},
                             {"list", Value::List{"x", Dictionary{{"k", Value::List{}}}}}};
    const auto read = PropertyList::decode(PropertyList::encode(written));
    ASSERT_TRUE(read) << read.error().description;
    EXPECT_EQ(*read, Value(written));
}

TEST(PropertyList, absent_values_are_left_out) {
    EXPECT_EQ(PropertyList::decode(PropertyList::encode(Dictionary{{"a", nullptr}, {"b", 1}})).value(), Value(Dictionary{{"b", 1}}));
}

Bytes nested(int levels) {
    Bytes xml;
    for (int i = 0; i < levels; ++i) xml += "<array>";
    for (int i = 0; i < levels; ++i) xml += "</array>";
    return xml;
}

TEST(PropertyList, comments_and_character_data_are_read_over) {
    const auto read = PropertyList::decode(
        "<?xml version=\"1.0\"?><!DOCTYPE plist PUBLIC \"-//X//EN\" \"http://x/x.dtd\"><plist><!-- <array> -->"
        "<array><string><![CDATA[<dict>]]></string><true/></array></plist>");
    ASSERT_TRUE(read) << read.error().description;
    EXPECT_EQ(*read, Value(Value::List{"<dict>", true}));
}

TEST(PropertyList, as_deep_as_anything_real_is_read) { EXPECT_TRUE(PropertyList::decode("<plist>" + nested(500) + "</plist>")); }

TEST(PropertyList, refuses_damage_without_noise) {
    std::string ends;
    for (int i = 0; i < 300'000; ++i) ends += "</array>";
    const Bytes whole = PropertyList::encode(Dictionary{{"k", "v"}});
    const std::pair<const char*, Bytes> rows[] = {
        {"empty", ""},
        {"random", "\x7F\x45LF nothing"},
        {"cut off", whole.substr(0, whole.size() / 2)},
        {"binary header only", "bplist00"},
        {"html", "<html><body>no</body></html>"},
        {"deeper than any stack", "<plist>" + nested(300'000) + "</plist>"},
        {"deep behind a comment of ends", "<plist><!--" + ends + "-->" + nested(300'000) + "</plist>"},
        {"deep behind CDATA of ends", "<plist><string><![CDATA[" + ends + "]]></string>" + nested(300'000) + "</plist>"},
        {"deep with attributes that look like ends", "<plist>" + replaced(nested(300'000), "<array>", "<array x=\"/>\">") + "</plist>"},
        {"deep behind a single quote", "<plist><array x='>" + nested(300'000) + "</array></plist>"},
        {"deep in a document type that hides its end", "<!DOCTYPE plist [<!a><!-- ]><plist>" + nested(300'000) + "</plist>-->"},
        {"deep behind instructions", "<plist><?x \"?>" + ends + "\" ?>" + nested(300'000) + "</plist>"},
        {"deep in an instruction that hides its end", "<?x \"?> <!-- \" ?><plist>" + nested(300'000) + "</plist>-->"},
        {"more ends than beginnings", "<plist></array><array/></plist>"},
        {"binary and large", "bplist00" + Bytes(200'000, '\xA1')},
    };
    for (const auto& [name, bytes] : rows) {
        SCOPED_TRACE(name);
        testing::internal::CaptureStderr();
        const bool read = PropertyList::decode(bytes).ok();
        const auto noise = testing::internal::GetCapturedStderr();
        EXPECT_FALSE(read);
        EXPECT_EQ(noise, "");
    }
}

TEST(KeyedArchive, tells_another_class_from_damage) {
    const Bytes archive = KeyedArchive::encode("HDCLUserModel", {{"Key_token", ""}});
    ASSERT_TRUE(KeyedArchive::decode("HDCLUserModel", archive));
    EXPECT_EQ(*KeyedArchive::decode("HDCLUserModel", archive)->find("Key_token"), Value(""));
    EXPECT_FALSE(KeyedArchive::decode("Other", archive));
    EXPECT_FALSE(KeyedArchive::decode("HDCLUserModel", PropertyList::encode(Dictionary{{"Key_token", "x"}})));
}

}  // namespace
}  // namespace halvane::util
