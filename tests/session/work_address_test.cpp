#include "session/WorkAddressInfoHelper.h"
#include "session/WorkAddressModel.h"

#include "support/MemoryPreferences.h"
#include "util/KeyedArchive.h"

#include <gtest/gtest.h>

namespace halvane::session {
namespace {

using util::Dictionary;
using util::Value;

TEST(WorkAddressModel, reads_what_the_server_lists) {
    const std::tuple<const char*, Dictionary, WorkAddressModel> rows[] = {
        {"both", {{"name", "枫林T1"}, {"value", "fenglin-t1"}, {"more", 1}}, {"枫林T1", "fenglin-t1"}},
        {"numbers", {{"name", 1}, {"value", 20}}, {"1", "20"}},
        {"empty texts", {{"name", ""}, {"value", ""}}, {"", ""}},
        {"other kinds", {{"name", Value::List{}}, {"value", nullptr}}, {}},
        {"nothing", {}, {}},
    };
    for (const auto& [name, dictionary, model] : rows) {
        SCOPED_TRACE(name);
        EXPECT_EQ(WorkAddressModel::fromDictionary(dictionary), model);
        const auto restored = WorkAddressModel::unarchived(model.archived());
        ASSERT_TRUE(restored) << restored.error().description;
        EXPECT_EQ(*restored, model);
    }
}

TEST(WorkAddressModel, is_archived_under_crossed_keys) {
    const Dictionary fields{{"Key_workAddressValue", "上海"}, {"Key_workAddressKey", "shanghai"}};
    const WorkAddressModel shanghai{.name = "上海", .value = "shanghai"};
    EXPECT_EQ(*util::KeyedArchive::decode("WorkAddressModel", shanghai.archived()), fields);
    EXPECT_EQ(*WorkAddressModel::unarchived(util::KeyedArchive::encode("WorkAddressModel", fields)), shanghai);
    for (const auto& bytes : {util::Bytes(), util::Bytes("<plist>"), util::KeyedArchive::encode("HDCLUserModel", fields)}) {
        EXPECT_FALSE(WorkAddressModel::unarchived(bytes)) << bytes;
    }
}

TEST(WorkAddressInfo, is_kept_as_it_came_and_written_at_once) {
    test::MemoryPreferences preferences;
    WorkAddressInfoHelper helper(preferences);
    EXPECT_FALSE(helper.getWorkAddressInfo());

    const Value::List list{Dictionary{{"name", "大连"}, {"value", "dalian"}, {"city", Dictionary{{"id", 7}}}}, "stray", Dictionary{}};
    helper.saveWorkAddressInfoWithData(list);
    EXPECT_EQ(preferences.saved, (Dictionary{{"KEY_WORKADDRESS", list}}));

    helper.saveWorkAddressInfoWithData(std::nullopt);
    EXPECT_EQ(preferences.flushes, 1) << "an absent list touches nothing";
    EXPECT_EQ(helper.getWorkAddressInfo(), list);

    helper.saveWorkAddressInfoWithData(Value::List{});
    EXPECT_EQ(helper.getWorkAddressInfo(), Value::List{}) << "an empty list is a list";
}

TEST(WorkAddressInfo, what_is_no_list_reads_as_none) {
    test::MemoryPreferences preferences;
    for (const Value& other : {Value("上海"), Value(7), Value(Dictionary{{"name", "上海"}})}) {
        preferences.set("KEY_WORKADDRESS", other);
        EXPECT_FALSE(WorkAddressInfoHelper(preferences).getWorkAddressInfo());
    }
}

}  // namespace
}  // namespace halvane::session
