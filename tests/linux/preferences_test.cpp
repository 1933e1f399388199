#include "linux/PosixFileStore.h"
#include "linux/PropertyListPreferences.h"
#include "support/MemoryFileStore.h"
#include "support/MemoryPreferences.h"
#include "support/PreferencesContract.h"
#include "support/RecordingLog.h"
#include "util/PropertyList.h"

#include <memory>

namespace halvane::test {

struct MemoryPreferencesHarness {
    platform::Preferences& preferences() { return preferences_; }
    void restart() { preferences_.values = preferences_.saved; }
    MemoryPreferences preferences_;
};

struct PropertyListPreferencesHarness {
    platform::Preferences& preferences() { return *preferences_; }
    void restart() {
        preferences_.reset();
        preferences_ = make();
    }
    std::unique_ptr<linux::PropertyListPreferences> make() {
        return std::make_unique<linux::PropertyListPreferences>(files, "/config/halvane/preferences.plist", log);
    }
    MemoryFileStore files;
    RecordingLog log;
    std::unique_ptr<linux::PropertyListPreferences> preferences_ = make();
};

INSTANTIATE_TYPED_TEST_SUITE_P(Memory, PreferencesContract, MemoryPreferencesHarness);
INSTANTIATE_TYPED_TEST_SUITE_P(PropertyList, PreferencesContract, PropertyListPreferencesHarness);

}  // namespace halvane::test

namespace halvane::linux {
namespace {

class PropertyListPreferencesTest : public testing::Test {
protected:
    const std::filesystem::path file = "/config/halvane/preferences.plist";
    const std::filesystem::path damaged = "/config/halvane/preferences.plist.damaged";
    test::MemoryFileStore files;
    test::RecordingLog log;

    void placeFile(const util::Bytes& bytes) {
        ASSERT_TRUE(files.makeDirectory(file.parent_path()));
        files.files[file] = bytes;
        files.calls.clear();
    }
    util::Value onDisk() { return util::PropertyList::decode(files.files.at(file)).value(); }
};

TEST_F(PropertyListPreferencesTest, only_changes_are_written_and_the_end_flushes) {
    placeFile(util::PropertyList::encode(util::Dictionary{{"a", 1}}));
    {
        PropertyListPreferences preferences(files, file, log);
        preferences.set("a", 1);
        preferences.flush();
        preferences.set("a", 2);
        preferences.set("a", 1);
        preferences.flush();
        EXPECT_EQ(files.calls, std::vector<std::string>{});
        preferences.set("b", true);
    }
    EXPECT_EQ(onDisk(), util::Value(util::Dictionary{{"a", 1}, {"b", true}}));
    EXPECT_EQ(log.lines(), std::vector<std::string>{});
}

TEST_F(PropertyListPreferencesTest, a_damaged_file_is_kept_aside_once_and_reads_as_none) {
    const std::pair<const char*, util::Bytes> rows[] = {
        {"cut off", util::PropertyList::encode(util::Dictionary{{"HDCL_ISAUTOLOGIN", true}}).substr(0, 200)},
        {"empty", ""},
        {"not a property list", "\x7F\x45LF"},
        {"no dictionary", util::PropertyList::encode(util::Value::List{"a"})},
    };
    for (const auto& [name, bytes] : rows) {
        SCOPED_TRACE(name);
        files = {};
        placeFile(bytes);
        {
            PropertyListPreferences preferences(files, file, log);
            EXPECT_FALSE(preferences.has("HDCL_ISAUTOLOGIN"));
            EXPECT_EQ(files.files.at(damaged), bytes);
            EXPECT_TRUE(log.contains("is damaged"));
            preferences.set("a", 1);
        }
        EXPECT_EQ(onDisk(), util::Value(util::Dictionary{{"a", 1}}));

        files.files[file] = "damaged again";
        const PropertyListPreferences again(files, file, log);
        EXPECT_EQ(files.files.at(damaged), bytes);
    }
}

TEST_F(PropertyListPreferencesTest, refused_writes_are_logged_and_tried_again) {
    placeFile("");
    files.files.clear();
    {
        PropertyListPreferences preferences(files, file, log);
        preferences.set("a", 1);
        files.refuseWrites = true;
        preferences.flush();
        EXPECT_TRUE(log.contains("not saved"));
        EXPECT_EQ(preferences.get("a"), std::optional<util::Value>(1));
        files.refuseWrites = false;
    }
    EXPECT_EQ(onDisk(), util::Value(util::Dictionary{{"a", 1}}));
}

TEST_F(PropertyListPreferencesTest, an_unreadable_file_is_logged_and_an_absent_one_is_not) {
    { const PropertyListPreferences absent(files, file, log); }
    EXPECT_EQ(log.lines(), std::vector<std::string>{});
    placeFile("x");
    files.unreadable.insert(file);
    const PropertyListPreferences unreadable(files, file, log);
    EXPECT_TRUE(log.contains("starting without any"));
}

TEST_F(PropertyListPreferencesTest, a_text_of_any_bytes_never_costs_the_other_preferences) {
    const std::pair<const char*, std::string> rows[] = {
        {"NUL", std::string("a\0b", 3)}, {"control", "a\x01\x1B"}, {"no UTF-8", "a\xFF\xC3"}, {"lone surrogate", "\xED\xA0\x80"}};
    for (const auto& [name, text] : rows) {
        SCOPED_TRACE(name);
        files = {};
        {
            PropertyListPreferences preferences(files, file, log);
            preferences.set("good", true);
            preferences.set("bad", text);
        }
        const PropertyListPreferences preferences(files, file, log);
        EXPECT_TRUE(preferences.boolean("good"));
        EXPECT_FALSE(log.contains("damaged"));
    }
}

}  // namespace
}  // namespace halvane::linux
