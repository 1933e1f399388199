#include "device/HVStatusBarConfig.h"

#include "support/RecordingStatusBar.h"

#include <gtest/gtest.h>

namespace halvane::device {
namespace {

class StatusBarConfigTest : public testing::Test {
protected:
    void choose() { bar.shown.at(0)->menu.at(0).action(); }

    test::RecordingStatusBar bar;
    HVStatusBarConfig config{bar};
};

TEST_F(StatusBarConfigTest, icon_has_one_entry_and_replaces_the_one_before) {
    EXPECT_TRUE(bar.shown.empty());
    for (int time = 0; time < 3; ++time) config.addStatusMenu();
    ASSERT_EQ(bar.shown.size(), 1u);
    EXPECT_EQ(bar.most, 1u) << "never two side by side";
    const auto& item = *bar.shown[0];
    EXPECT_EQ(item.length, platform::StatusBar::kSquareLength);
    EXPECT_EQ(item.image, "AppIcon 17x17");
    ASSERT_EQ(item.menu.size(), 1u);
    EXPECT_EQ(item.menu[0].title + "/" + item.menu[0].keyEquivalent, "卸载/");
}

TEST_F(StatusBarConfigTest, entry_runs_the_callback_of_the_moment_or_nothing) {
    config.addStatusMenu();
    choose();
    std::string events;
    config.setUninstallMenuBlock([&] {
        events += "first ";
        config.setUninstallMenuBlock([&events] { events += "second "; });
    });
    choose();
    config.addStatusMenu();
    choose();
    EXPECT_EQ(events, "first second ");
}

}  // namespace
}  // namespace halvane::device
