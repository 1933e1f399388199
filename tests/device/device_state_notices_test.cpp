#include "device/DeviceStateNotices.h"

#include "support/RecordingNotifications.h"

#include <gtest/gtest.h>

#include <string_view>

namespace halvane::device {
namespace {

/// What each poll of a session brings: "L" a notice of the lock, "X" of the loss, "." none.
std::string noticesOf(std::string_view polls) {
    test::RecordingNotifications desktop;
    DeviceStateNotices notices(desktop);
    std::string heard;
    for (const char poll : polls) {
        notices.stateIs(poll == 'l' || poll == 'b', poll == 'x' || poll == 'b');
        const auto summaries = desktop.takeSummaries();
        EXPECT_LE(summaries.size(), 1u) << polls;
        const std::string summary = summaries.empty() ? "" : summaries.front();
        heard += summary.find("锁定") != std::string::npos ? 'L' : summary.find("丢失") != std::string::npos ? 'X' : '.';
    }
    return heard;
}

TEST(DeviceStateNoticesTest, only_a_change_to_locked_or_to_lost_is_told) {
    // Polls: "-" neither, "l" locked, "x" lost, "b" both.
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"nothing happens", "----", "...."},
        {"locked from the first poll on", "lll", "L.."},
        {"locked later", "--ll-", "..L.."},
        {"unlocked and locked again", "ll-ll", "L..L."},
        {"lost, found, lost", "xx-x", "X..X"},
        {"both at once", "bb", "X."},
        {"locked, then lost as well", "llbb", "L.X."},
        {"lost, then locked as well", "xbb", "X.."},
        {"found, and still locked", "bll", "XL."},
        {"unlocked, and still lost", "bx-", "X.."},
        {"from the one to the other", "lxl", "LXL"},
    };
    for (const auto& [name, polls, expected] : rows) EXPECT_EQ(noticesOf(polls), expected) << name;
}

TEST(DeviceStateNoticesTest, newer_state_takes_the_place_of_the_older_on_the_screen) {
    test::RecordingNotifications desktop;
    DeviceStateNotices notices(desktop);
    notices.stateIs(true, false);
    notices.stateIs(true, true);
    ASSERT_EQ(desktop.notices.size(), 2u);
    EXPECT_EQ(desktop.notices[0].subject, desktop.notices[1].subject);
    for (const auto& notice : desktop.notices) {
        EXPECT_EQ(notice.urgency, platform::DesktopNotifications::Urgency::Critical);
        EXPECT_NE(notice.body.find("请联系 IT 服务台"), std::string::npos) << "what to do";
    }
}

}  // namespace
}  // namespace halvane::device
