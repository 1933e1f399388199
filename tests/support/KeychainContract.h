#pragma once

#include "platform/Keychain.h"

#include <gtest/gtest.h>

namespace halvane::test {

/// What every Keychain that works does. `Harness`: `keychain()`, which holds nothing yet.
template <typename Harness>
class KeychainContract : public testing::Test {
protected:
    platform::Keychain& keychain() { return harness_.keychain(); }

    static platform::KeychainQuery query(const std::string& service) {
        return {"generic password", service, service, "after first unlock"};
    }
    void store(const std::string& service, const util::Bytes& data) {
        const auto stored = keychain().add(query(service), data);
        ASSERT_TRUE(stored) << stored.error().description;
    }
    std::optional<util::Bytes> stored(const std::string& service) {
        const auto found = keychain().copyMatching(query(service));
        EXPECT_TRUE(found) << found.error().description;
        return found ? *found : std::nullopt;
    }

private:
    Harness harness_;
};

TYPED_TEST_SUITE_P(KeychainContract);

TYPED_TEST_P(KeychainContract, bytes_of_any_kind_come_back_as_they_are) {
    const std::pair<const char*, util::Bytes> rows[] = {{"text", "p\xC3\xA4ss 职场"},
                                                        {"nothing", ""},
                                                        {"not text", util::Bytes("\0\xFF\xFE\n\0", 5)},
                                                        {"long", util::Bytes(20000, '\x80')}};
    for (const auto& [name, bytes] : rows) {
        this->store(name, bytes);
        EXPECT_EQ(this->stored(name), std::optional(bytes)) << name;
    }
    EXPECT_EQ(this->stored("text"), std::optional(rows[0].second)) << "after others were stored";
}

TYPED_TEST_P(KeychainContract, an_item_is_added_once_and_replaced_by_way_of_removal) {
    this->store("service", "first");
    EXPECT_FALSE(this->keychain().add(this->query("service"), "second"));
    EXPECT_EQ(this->stored("service"), std::optional<util::Bytes>("first"));
    EXPECT_TRUE(this->keychain().remove(this->query("service")));
    this->store("service", "second");
    EXPECT_EQ(this->stored("service"), std::optional<util::Bytes>("second"));
}

TYPED_TEST_P(KeychainContract, what_is_not_there_is_absent_and_may_be_removed) {
    EXPECT_EQ(this->stored("none"), std::nullopt);
    EXPECT_TRUE(this->keychain().remove(this->query("none")));
    this->store("one", "x");
    this->store("other", "y");
    EXPECT_TRUE(this->keychain().remove(this->query("one")));
    EXPECT_EQ(this->stored("one"), std::nullopt);
    EXPECT_EQ(this->stored("other"), std::optional<util::Bytes>("y"));
}

REGISTER_TYPED_TEST_SUITE_P(KeychainContract, bytes_of_any_kind_come_back_as_they_are, an_item_is_added_once_and_replaced_by_way_of_removal,
                            what_is_not_there_is_absent_and_may_be_removed);

}  // namespace halvane::test
