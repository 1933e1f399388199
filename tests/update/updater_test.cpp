#include "UpdateStory.h"

#include "util/UpdateError.h"

#include <gtest/gtest.h>

#include <fstream>

namespace halvane::update {
namespace {

using test::UpdateStory;
using Words = std::vector<std::string>;

class AppcastUpdaterTest : public testing::Test {
protected:
    void listen() {
        story.updater->setDelegate({.didFindValidUpdate = [this](const std::string& version) { heard.push_back("found " + version); },
                                    .didNotFindUpdate = [this] { heard.emplace_back("found none"); }});
    }
    /// Lets go on what goes on until that is so.
    void await(const std::function<bool()>& condition) {
        EXPECT_TRUE(test::eventually([&] {
            story.loop->runPending();
            return condition();
        }));
    }
    /// A feed that was read to its end is remembered, when it is newer than the last.
    void awaitFeedOf(const std::string& issued) {
        await([&] { return util::textOf(story.preferences.values.find("HALVANE_UpdateFeedIssued")) == issued; });
    }
    void reach(const std::string& primary) {
        if (story.screen == nullptr || !story.screen->isShown) story.check();
        while (story.screen->scene.primary != primary && !HasFailure()) story.press();
    }

    UpdateStory story;
    Words heard;
};

TEST_F(AppcastUpdaterTest, the_delegate_hears_of_its_own_check_only) {
    listen();
    story.updater->checkForUpdatesInBackground();
    await([this] { return story.screen != nullptr; });
    EXPECT_EQ(story.screen->scene.heading, "发现新版本 V1.1.0");
    story.check();
    EXPECT_EQ(heard, Words{});
    story.updater->checkForUpdateInformation();
    await([this] { return !heard.empty(); });
    EXPECT_EQ(heard, Words{"found 1.1.0"});
    story.publish({.version = "1.0.0", .issued = "2026-11-23T12:00:01Z"});
    story.updater->checkForUpdateInformation();
    await([this] { return heard.size() > 1; });
    EXPECT_EQ(heard, (Words{"found 1.1.0", "found none"}));
    EXPECT_EQ(story.screen->presented, 2) << "a check for information has no window";
}

TEST_F(AppcastUpdaterTest, a_check_that_fails_tells_nobody_but_the_log) {
    listen();
    story.replies[UpdateStory::kFeedPath] = test::okReply("no feed");
    story.updater->checkForUpdateInformation();
    story.updater->checkForUpdatesInBackground();
    await([this] { return story.log.lines().size() == 2; });
    EXPECT_EQ(heard, Words{});
    EXPECT_EQ(story.screen, nullptr);
    EXPECT_EQ(story.log.lines(), Words(2, "updates: The update feed is not signed with the company's key."));
}

TEST_F(AppcastUpdaterTest, in_the_background_it_shows_itself_only_with_an_offer_and_never_takes_the_keyboard) {
    story.publish({.version = "1.0.0"});
    story.updater->checkForUpdatesInBackground();
    awaitFeedOf("2026-11-23T12:00:00Z");
    EXPECT_EQ(story.screen, nullptr);
    story.publish({});
    story.updater->checkForUpdatesInBackground();
    await([this] { return story.screen != nullptr; });
    ASSERT_NE(story.screen, nullptr);
    EXPECT_TRUE(story.screen->isShown);
    EXPECT_FALSE(story.screen->hadKeyboard);
    EXPECT_EQ(story.screen->scene.notes, "新的更新窗口");
    EXPECT_EQ(story.screen->scene.text, "当前版本 V1.0.0，下载大小 292.97KB。");
    EXPECT_EQ(story.filesLeft(), 0U);
    EXPECT_EQ(story.server.requests().size(), 2U) << "nothing is fetched before the person says so";
}

TEST_F(AppcastUpdaterTest, a_person_goes_from_the_check_to_the_restart) {
    story.updater->checkForUpdates();
    EXPECT_TRUE(story.screen->isShown && story.screen->hadKeyboard && story.screen->scene.isBusy);
    EXPECT_EQ(story.screen->scene.heading, "正在检查更新…");
    story.settle();
    EXPECT_EQ(story.screen->scene.primary, "下载更新");
    story.press();
    EXPECT_EQ(story.screen->scene.heading, "V1.1.0 已准备好安装");
    EXPECT_TRUE(story.installer.packages.empty()) << "not without the person's word";
    story.press();
    ASSERT_EQ(story.installer.packages.size(), 1U);
    EXPECT_EQ(story.installer.signatures.front(), story.signer.sign(story.package));
    EXPECT_EQ(*story.files.read(story.installer.packages.front()), story.package);
    EXPECT_EQ(story.installer.packages.front().filename(), "halvane_1.1.0_amd64.deb");
    EXPECT_TRUE(story.screen->scene.isBusy);
    story.installer.ended({});
    EXPECT_EQ(story.screen->scene.primary, "重新启动");
    EXPECT_EQ(story.restarts, 0);
    story.screen->onPrimary();
    EXPECT_EQ(story.restarts, 1);
    for (const auto& request : story.server.requests()) EXPECT_NE(request.find("User-Agent: Halvane/1.0.0"), std::string::npos) << request;
}

TEST_F(AppcastUpdaterTest, nothing_newer_is_said_and_closed) {
    story.publish({.version = "1.0.0"});
    story.check();
    EXPECT_EQ(story.screen->scene.heading, "已经是最新版本");
    EXPECT_EQ(story.screen->scene.text, "Halvane 1.0.0 是目前的最新版本。");
    story.screen->onPrimary();
    EXPECT_FALSE(story.screen->isShown);
}

TEST_F(AppcastUpdaterTest, closing_ends_a_check_and_a_download_and_the_next_one_begins_anew) {
    for (const char* closing : {"closed", "cancelled"}) {
        const auto close = [&] { (closing == std::string("closed") ? story.screen->onClosed : story.screen->onSecondary)(); };
        story.updater->checkForUpdates();
        close();
        EXPECT_FALSE(story.screen->isShown);
        reach("下载更新");
        story.screen->onPrimary();
        EXPECT_TRUE(story.screen->scene.heading.starts_with("正在下载"));
        close();
        EXPECT_FALSE(story.screen->isShown);
        story.check();
        EXPECT_EQ(story.screen->scene.primary, "下载更新") << "what was asked for anew is answered";
        close();
    }
    EXPECT_TRUE(story.installer.packages.empty());
}

TEST_F(AppcastUpdaterTest, what_is_downloaded_waits_and_an_installation_goes_on_behind_a_closed_window) {
    reach("安装");
    story.screen->onClosed();
    EXPECT_FALSE(story.screen->isShown);
    story.check();
    EXPECT_EQ(story.screen->scene.primary, "安装") << "it is still on offer, and need not be fetched again";
    story.screen->onClosed();
    story.publish({.version = "1.0.5"});
    story.check();
    EXPECT_EQ(story.screen->scene.primary, "下载更新") << "what is no longer on offer is not installed";
    story.screen->onClosed();
    story.publish({});
    story.check();
    story.press();
    story.screen->onSecondary();
    EXPECT_FALSE(story.screen->isShown);
    story.updater->checkForUpdates();
    EXPECT_TRUE(story.screen->isShown && story.screen->scene.isBusy) << "the same installation, not a second";
    story.screen->onClosed();
    story.installer.ended({});
    EXPECT_TRUE(story.screen->isShown);
    EXPECT_FALSE(story.screen->hadKeyboard);
    story.screen->onSecondary();
    story.publish({.issued = "2026-11-23T12:30:00Z"});
    story.updater->checkForUpdatesInBackground();
    awaitFeedOf("2026-11-23T12:30:00Z");
    EXPECT_FALSE(story.screen->isShown) << "what is installed is not offered";
    story.updater->checkForUpdates();
    EXPECT_EQ(story.screen->scene.primary, "重新启动");
    EXPECT_EQ(story.installer.packages.size(), 1U);
}

TEST_F(AppcastUpdaterTest, what_a_killed_client_left_is_removed_by_the_next_download) {
    std::filesystem::create_directories(story.directory.path() / "updates");
    for (const char* name : {"halvane_1.0.9_amd64.deb", ".halvane-download-abcdef"})
        std::ofstream(story.directory.path() / "updates" / name) << "left";
    reach("安装");
    EXPECT_EQ(story.filesLeft(), 1U);
}

TEST_F(AppcastUpdaterTest, the_newest_feed_is_remembered_beyond_the_end_of_the_program) {
    story.publish({.issued = "2026-11-23T12:30:00Z"});
    story.check();
    EXPECT_EQ(*util::textOf(story.preferences.saved.find("HALVANE_UpdateFeedIssued")), "2026-11-23T12:30:00Z");
    story.start();
    story.publish({.version = "1.0.5", .issued = "2026-11-23T12:29:59Z"});
    story.check();
    EXPECT_EQ(story.screen->scene.heading, "没有更新");
    story.publish({.version = "1.0.5", .issued = "2026-11-23T12:30:00Z"});
    story.press();
    EXPECT_EQ(story.screen->scene.heading, "发现新版本 V1.0.5");
    // Of a feed from the future nothing is kept: it would hide all others until then.
    for (const auto& [issued, heading] :
         {std::pair{"2027-11-23T12:30:00Z", "没有更新"}, std::pair{"2026-11-23T12:30:01Z", "发现新版本 V1.1.0"}}) {
        story.publish({.issued = issued, .expires = "2027-12-01T00:00:00Z"});
        story.screen->onSecondary();
        story.check();
        EXPECT_EQ(story.screen->scene.heading, heading);
    }
}

TEST_F(AppcastUpdaterTest, it_may_go_at_any_moment) {
    story.updater->checkForUpdatesInBackground();
    story.updater->checkForUpdateInformation();
    story.updater->checkForUpdates();
    story.updater.reset();
    story.loop->runPending();
    story.start();
    reach("下载更新");
    story.screen->onPrimary();
    story.updater.reset();
    story.loop->runPending();
    story.start();
    reach("安装");
    story.press();
    story.updater.reset();
    story.installer.ended({});
    story.loop->runPending();
}

}  // namespace
}  // namespace halvane::update
