#include "support/RecordingLog.h"
#include "update/UnavailableUpdater.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace halvane::update {
namespace {

TEST(UnavailableUpdater, quiet_checks_end_in_one_line_of_the_log_and_only_a_person_who_asks_is_told) {
    test::RecordingLog log;
    std::vector<std::string> told;
    UnavailableUpdater updater(log, [&told](const std::string& text) { told.push_back(text); });
    updater.setDelegate({.didFindValidUpdate = [](const std::string&) { FAIL() << "found an update"; },
                         .didNotFindUpdate = [] { FAIL() << "said that there is none"; }});
    EXPECT_EQ(log.lines().size(), 0U);
    updater.checkForUpdatesInBackground();
    updater.checkForUpdateInformation();
    EXPECT_TRUE(told.empty());
    updater.checkForUpdates();
    EXPECT_EQ(log.lines().size(), 1U);
    EXPECT_TRUE(log.contains("no update feed is configured"));
    EXPECT_EQ(told.size(), 1U);
    UnavailableUpdater(log, {}).checkForUpdates();
}

}  // namespace
}  // namespace halvane::update
