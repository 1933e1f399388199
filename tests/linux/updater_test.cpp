#include "linux/UnavailableUpdater.h"
#include "support/RecordingLog.h"

#include <gtest/gtest.h>

namespace halvane::linux {
namespace {

TEST(UnavailableUpdater, every_check_ends_in_one_line_of_the_log_and_calls_nobody) {
    test::RecordingLog log;
    UnavailableUpdater updater(log);
    updater.setDelegate({.didFindValidUpdate = [](const std::string&) { FAIL() << "found an update"; },
                         .didNotFindUpdate = [] { FAIL() << "said that there is none"; }});
    EXPECT_EQ(log.lines().size(), 0U);
    updater.checkForUpdatesInBackground();
    updater.checkForUpdateInformation();
    updater.checkForUpdates();
    EXPECT_EQ(log.lines().size(), 1U);
    EXPECT_TRUE(log.contains("no update feed is configured"));
}

}  // namespace
}  // namespace halvane::linux
