#include "support/MainStory.h"
#include "ui/main/MainRightOperationView.h"

#include <gtest/gtest.h>
#include <QTest>

using namespace std::chrono_literals;

namespace halvane::test {
namespace {

using Events = std::vector<std::string>;

/// The main window's reaction to what the server says of this computer, and to the icon in the status bar.
class DeviceWatchTest : public testing::Test {
protected:
    DeviceWatchTest() {
        story.notifications.addObserver("HDCL_Notification_Logout", [this] { story.events.push_back("logout"); });
        story.device.launcher.outputs["/usr/bin/security"] = "";
        story.device.launcher.outputs["/usr/sbin/networksetup"] = "";
        open();
    }
    void open() {
        window = story.makeMainWindow();
        window->makeKeyAndOrderFront();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
        story.facts.runPending();
        story.device.launcher.starts.clear();
    }
    /// Half a minute, and what the server says at its end.
    void poll(const char* lock, const char* lose) {
        story.company.mainLoop->advance(30s);
        story.facts.runPending();
        story.company.mainLoop->runPending();
        story.company.transport.replyJson(
            story.company.transport.exchanges.size() - 1,
            std::string(R"({"code":200,"data":{"lock_status":")") + lock + R"(","lose_status":")" + lose + R"("}})");
        story.company.mainLoop->runPending();
    }
    /// What the reaction did to the computer; starts that belong to the pages are not counted.
    Events tools() {
        Events found;
        for (const auto& start : story.device.launcher.starts)
            if (start.starts_with("/usr/bin/security") || start.starts_with("/usr/sbin/networksetup")) found.push_back(start);
        story.device.launcher.starts.clear();
        return found;
    }
    bool signedIn() { return story.company.user.user_isLogin(); }
    void chooseUninstall() { story.statusBar.shown.at(0)->menu.at(0).action(); }
    [[nodiscard]] bool showsReminder() const {
        const auto* reminder = window->findChild<QWidget*>(QStringLiteral("uninstallAlertView"));
        return reminder && reminder->isVisible();
    }

    static Events revoked(const std::string& name) {
        return {"/usr/bin/security delete-certificate -c " + name, "/usr/sbin/networksetup -setnetworkserviceenabled Wi-Fi off",
                "/usr/sbin/networksetup -setnetworkserviceenabled Wi-Fi on"};
    }

    MainStory story;
    std::unique_ptr<ui::MainWindow> window;
};

TEST_F(DeviceWatchTest, computer_that_is_neither_locked_nor_lost_is_left_alone) {
    poll("No", "No");
    poll("yes", "");
    EXPECT_EQ(tools(), Events{});
    EXPECT_EQ(story.events, Events{});
    EXPECT_TRUE(signedIn() && window->isVisible());
}

TEST_F(DeviceWatchTest, lost_signs_out_and_shows_the_login_window) {
    poll("No", "Yes");
    EXPECT_EQ(story.events, (Events{"logout", "login window"}));
    EXPECT_FALSE(signedIn());
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(tools(), Events{});
    const auto asked = story.company.transport.exchanges.size();
    story.company.mainLoop->advance(10min);
    story.facts.runPending();
    story.company.mainLoop->runPending();
    EXPECT_EQ(story.company.transport.exchanges.size(), asked) << "nobody is there to ask for";
}

TEST_F(DeviceWatchTest, locked_takes_the_certificate_and_restarts_the_network_at_every_poll) {
    for (int time = 0; time < 3; ++time) {
        poll("Yes", "No");
        EXPECT_EQ(tools(), revoked("c"));
    }
    EXPECT_TRUE(signedIn() && window->isVisible());
    poll("No", "No");
    EXPECT_EQ(tools(), Events{}) << "until the lock is gone";
}

TEST_F(DeviceWatchTest, both_sign_out_first_and_still_know_whose_certificate_it_was) {
    std::vector<std::size_t> waiting;
    story.notifications.addObserver("HDCL_Notification_Logout", [&] { waiting.push_back(story.company.mainLoop->waiting()); });
    poll("No", "Yes");
    story.signIn();
    open();
    poll("Yes", "Yes");
    ASSERT_EQ(waiting.size(), 2u);
    EXPECT_EQ(waiting[0], waiting[1]) << "the tools are asked after the logout";
    EXPECT_FALSE(signedIn());
    EXPECT_EQ(tools(), revoked("c"));
}

TEST_F(DeviceWatchTest, without_a_certificates_name_the_network_is_restarted_alone) {
    story.signIn({{"ad_cert_name", util::Value()}});
    poll("Yes", "No");
    EXPECT_EQ(tools().size(), 2u);
}

TEST_F(DeviceWatchTest, later_login_has_one_window_that_reacts) {
    auto older = std::move(window);
    open();
    poll("Yes", "No");
    EXPECT_EQ(tools(), revoked("c")) << "once";
    poll("No", "Yes");
    EXPECT_FALSE(window->isVisible());
    EXPECT_TRUE(older->isVisible()) << "the older one is not told";
    story.signIn();
    window.reset();
    older.reset();
    poll("Yes", "Yes");
    EXPECT_TRUE(signedIn()) << "windows that are gone do not react";
}

TEST_F(DeviceWatchTest, desktop_tells_of_a_change_once_in_each_session) {
    const std::string locked = "这台电脑已被锁定";
    const std::string lost = "这台电脑已被标记为丢失";
    poll("No", "No");
    poll("Yes", "No");
    poll("Yes", "No");
    EXPECT_EQ(story.desktopNotifications.takeSummaries(), Events{locked});
    poll("Yes", "Yes");
    EXPECT_EQ(story.desktopNotifications.takeSummaries(), Events{lost});
    EXPECT_FALSE(signedIn());
    story.signIn();
    open();
    poll("Yes", "No");
    EXPECT_EQ(story.desktopNotifications.takeSummaries(), Events{locked}) << "the next person has not been told";
}

TEST_F(DeviceWatchTest, icon_leads_to_the_reminder_and_never_stands_there_twice) {
    ASSERT_EQ(story.statusBar.shown.size(), 1u);
    open();
    EXPECT_EQ(story.statusBar.shown.size(), 1u);
    EXPECT_EQ(story.statusBar.most, 1u);
    window->orderBack();
    chooseUninstall();
    EXPECT_TRUE(showsReminder());
    chooseUninstall();
    EXPECT_TRUE(showsReminder()) << "it is there already";
    EXPECT_EQ(window->findChildren<QWidget*>(QStringLiteral("uninstallAlertView")).size(), 1);
}

TEST_F(DeviceWatchTest, after_a_logout_the_icon_does_not_bring_the_persons_window_back) {
    window->mainView().leftMenuView().logout();
    story.events.clear();
    chooseUninstall();
    EXPECT_EQ(story.events, Events{"uninstall after login"});
    EXPECT_FALSE(window->isVisible());
    window.reset();
    chooseUninstall();
    EXPECT_EQ(story.events.size(), 1u);
}

TEST_F(DeviceWatchTest, page_of_the_computer_counts_from_the_start) {
    const auto& page = dynamic_cast<device::DeviceInfoView&>(*window->mainView().rightOperationView().viewControllers().at(1));
    story.company.mainLoop->advance(5s);
    EXPECT_EQ(page.wave().cpuPercentageDataSources().size(), 15u);
}

}  // namespace
}  // namespace halvane::test
