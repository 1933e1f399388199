#pragma once

#include "platform/Preferences.h"

#include <gtest/gtest.h>

namespace halvane::test {

/// What every Preferences does. `Harness`: `preferences()`, and `restart()`, after which
/// `preferences()` are those that a new start of the program finds.
template <typename Harness>
class PreferencesContract : public testing::Test {
protected:
    platform::Preferences& preferences() { return harness_.preferences(); }
    void flushAndRestart() {
        preferences().flush();
        harness_.restart();
    }

private:
    Harness harness_;
};

TYPED_TEST_SUITE_P(PreferencesContract);

TYPED_TEST_P(PreferencesContract, values_of_every_kind_outlive_a_restart) {
    using util::Value;
    const std::pair<const char*, Value> rows[] = {
        {"boolean", true},
        {"off", false},
        {"number", std::int64_t{-7}},
        {"text", "职场 <&> \"x\"\n\ty "},
        {"empty text", ""},
        {"bytes", Value::Data{util::Bytes("\0\xFF", 2)}},
        {"list", Value::List{"a", util::Dictionary{{"k", 1}}}},
        {"key with & and <", util::Dictionary{}},
    };
    for (const auto& [key, value] : rows) this->preferences().set(key, value);
    this->flushAndRestart();
    for (const auto& [key, value] : rows) EXPECT_EQ(this->preferences().get(key), std::optional(value)) << key;
}

TYPED_TEST_P(PreferencesContract, the_last_change_of_a_key_counts) {
    this->preferences().set("changed", 1);
    this->preferences().set("removed", 1);
    this->flushAndRestart();
    this->preferences().set("changed", "now a text");
    this->preferences().remove("removed");
    this->preferences().remove("never there");
    this->flushAndRestart();
    EXPECT_EQ(this->preferences().text("changed"), "now a text");
    EXPECT_FALSE(this->preferences().has("removed"));
}

TYPED_TEST_P(PreferencesContract, null_is_no_preference) {
    this->preferences().set("key", true);
    this->preferences().set("key", nullptr);
    EXPECT_FALSE(this->preferences().has("key"));
    this->flushAndRestart();
    EXPECT_FALSE(this->preferences().has("key"));
}

REGISTER_TYPED_TEST_SUITE_P(PreferencesContract, values_of_every_kind_outlive_a_restart, the_last_change_of_a_key_counts,
                            null_is_no_preference);

}  // namespace halvane::test
