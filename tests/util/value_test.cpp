#include "util/Value.h"
#include "util/NotificationCenter.h"
#include "util/Redaction.h"

#include <gtest/gtest.h>

namespace halvane::util {
namespace {

TEST(Value, reads_whatever_a_server_puts_where_text_or_a_code_belongs) {
    struct Row {
        const char* name;
        Value value;
        std::optional<std::string> text;
        std::int64_t integer;
    };
    const Row rows[] = {
        {"text", "200", "200", 200},
        {"text with a tail", " 200 OK", " 200 OK", 200},
        {"text without digits", "ok", "ok", 0},
        {"signed text", "-7", "-7", -7},
        {"huge text", "99999999999999999999", "99999999999999999999", INT64_MAX},
        {"empty text", "", "", 0},
        {"number", 200, "200", 200},
        {"fraction", 200.9, "200.9", 200},
        {"infinite", 1e300, "1e+300", 0},
        {"longer than 64 bits", 1e19, "10000000000000000000", 0},
        {"text with a NUL", std::string("20\0x", 4), "20", 20},
        {"date", Value::Date{200}, std::nullopt, 0},
        {"boolean", true, "1", 1},
        {"null", nullptr, std::nullopt, 0},
        {"list", Value::List{200}, std::nullopt, 0},
        {"dictionary", Dictionary{{"code", 200}}, std::nullopt, 0},
        {"bytes", Value::Data{"200"}, std::nullopt, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(textOf(&row.value), row.text);
        EXPECT_EQ(integerOf(&row.value), row.integer);
    }
    EXPECT_EQ(textOf(nullptr), std::nullopt);
    EXPECT_EQ(integerOf(nullptr), 0);
}

TEST(Redaction, hides_secrets_by_key_at_any_depth_and_nothing_else) {
    const Value reply = Dictionary{{"username", "chen"},
                                   {"password", "p"},
                                   {"list", Value::List{Dictionary{{"ad_cert_password", "q"}, {"token", nullptr}}}},
                                   {"bytes", Value::Data{"raw"}}};
    const Value expected = Dictionary{{"username", "chen"},
                                      {"password", "<redacted>"},
                                      {"list", Value::List{Dictionary{{"ad_cert_password", "<redacted>"}, {"token", nullptr}}}},
                                      {"bytes", "<redacted>"}};
    EXPECT_EQ(redacted(reply), expected);
}

TEST(NotificationCenter, delivers_in_order_within_the_post_and_lets_observers_come_and_go) {
    NotificationCenter center;
    std::string log;
    NotificationCenter::Token second = 0;
    center.addObserver("n", [&] {
        log += "1";
        center.removeObserver(second);
        center.addObserver("n", [&] { log += "3"; });
    });
    second = center.addObserver("n", [&] { log += "2"; });
    center.addObserver("other", [&] { log += "x"; });
    center.post("n");
    EXPECT_EQ(log, "12");
    center.post("n");
    EXPECT_EQ(log, "1213");
}

}  // namespace
}  // namespace halvane::util
