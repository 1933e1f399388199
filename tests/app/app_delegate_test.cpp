#include "app/AppDelegate.h"

#include "login/RecordingActions.h"
#include "support/MainStory.h"

#include <gtest/gtest.h>
#include <QApplication>
#include <QLineEdit>
#include <QTest>

namespace halvane::test {
namespace {

using Events = std::vector<std::string>;
constexpr const char* kLoginSuccess = "HDCL_Notification_LoginSuccess";

class AppDelegateTest : public testing::Test {
protected:
    AppDelegateTest() {
        user.user_deleteUserInfo();
        updater.situation = windows;
        startAgain();
    }

    void startAgain() {
        delegate = std::make_unique<app::AppDelegate>(app::AppDelegate::Collaborators{
            .notifications = notifications,
            .updater = updater,
            .user = user,
            .makeLoginView =
                [this] {
                    return std::make_unique<login::LoginView>(
                        [this](login::LoginScreen& screen) { return std::make_unique<login::RecordingActions>(screen, events); },
                        [this] { return mainWindow(); });
                },
            .makeMainWindow = [this] { return mainWindow(); }});
    }
    std::unique_ptr<ui::MainWindow> mainWindow() {
        ++mainWindowsMade;
        return story.makeMainWindow();
    }
    void launch() { delegate->applicationDidFinishLaunching(); }
    void signIn() {
        story.signIn({{"token", ""}});  // an empty one counts
    }
    /// What the login does at its end.
    void loginSucceeds() {
        signIn();
        notifications.post(kLoginSuccess);
        delegate->loginView().showMainWindow();
    }

    static std::string windows() {
        std::string shown = " with";
        for (const QWidget* widget : QApplication::topLevelWidgets())
            if (widget->isVisible()) shown += " " + widget->objectName().toStdString();
        return shown;
    }

    MainStory story;
    Events& events = story.events;
    int mainWindowsMade = 0;
    util::NotificationCenter& notifications = story.notifications;
    RecordingUpdater& updater = story.updater;
    session::HDCLUserConfig& user = story.company.user;
    std::unique_ptr<app::AppDelegate> delegate;
};

TEST_F(AppDelegateTest, launch_shows_the_login_window_alone_and_then_looks_for_updates_once) {
    EXPECT_TRUE(events.empty()) << "nothing is made before the launch";
    launch();
    EXPECT_EQ(events, (Events{"built", "in window", "update check with LoginWindow"}));
    EXPECT_EQ(mainWindowsMade, 0);
    EXPECT_EQ(delegate->MainW(), nullptr);
}

TEST_F(AppDelegateTest, login_window_is_small_fixed_and_ready_for_typing) {
    launch();
    auto& window = delegate->loginW();
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Halvane"));
    EXPECT_EQ(window.size(), QSize(330, 400));
    window.resize(800, 600);
    EXPECT_EQ(window.size(), QSize(330, 400));
    EXPECT_FALSE(window.windowFlags() & (Qt::WindowMinimizeButtonHint | Qt::WindowMaximizeButtonHint));
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    EXPECT_EQ(QApplication::focusWidget()->objectName(), QStringLiteral("userNameTF"));
}

TEST_F(AppDelegateTest, login_window_closes_only_when_someone_is_signed_in) {
    launch();
    EXPECT_FALSE(delegate->loginW().close());
    EXPECT_TRUE(delegate->loginW().isVisible());
    signIn();
    EXPECT_TRUE(delegate->loginW().close());
    EXPECT_FALSE(delegate->loginW().isVisible());
}

TEST_F(AppDelegateTest, login_hides_the_login_window_and_logout_brings_the_same_one_back) {
    launch();
    auto* window = &delegate->loginW();
    auto* view = &delegate->loginView();
    QTest::keyClicks(view->findChild<QLineEdit*>(QStringLiteral("userNameTF")), QStringLiteral("chen"));
    loginSucceeds();
    EXPECT_FALSE(window->isVisible());
    ASSERT_NE(view->MainW(), nullptr);
    EXPECT_TRUE(view->MainW()->isVisible());

    user.user_deleteUserInfo();
    view->MainW()->orderOut();
    delegate->loginW().makeKeyAndOrderFront();
    EXPECT_EQ(&delegate->loginW(), window);
    EXPECT_EQ(&delegate->loginView(), view);
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(view->text(login::LoginScreen::Field::UserName), "chen@example.com");
}

TEST_F(AppDelegateTest, notification_is_observed_once_and_not_beyond_its_end) {
    launch();
    delegate->addNoti();
    loginSucceeds();
    delegate->showLoginWindow();
    delegate.reset();
    notifications.post(kLoginSuccess);

    // One that ends while the same notification is on its way to it.
    util::NotificationCenter early;
    early.addObserver(kLoginSuccess, [this] { delegate.reset(); });
    delegate = std::make_unique<app::AppDelegate>(app::AppDelegate::Collaborators{
        .notifications = early, .updater = updater, .user = user, .makeLoginView = {}, .makeMainWindow = {}});
    delegate->addNoti();
    early.post(kLoginSuccess);
    EXPECT_EQ(delegate, nullptr);
}

TEST_F(AppDelegateTest, spare_main_window_goes_behind_instead_of_closing) {
    launch();
    delegate->showMainWindow();
    ASSERT_NE(delegate->MainW(), nullptr);
    EXPECT_TRUE(delegate->MainW()->isVisible());
    EXPECT_FALSE(delegate->MainW()->close());
    EXPECT_TRUE(delegate->MainW()->isVisible());
    EXPECT_EQ(delegate->loginView().MainW(), nullptr) << "the login view's own is another";
    const auto other = mainWindow();
    EXPECT_FALSE(delegate->windowShouldClose(*other)) << "any main window";
}

TEST_F(AppDelegateTest, other_windows_close) {
    launch();
    ui::HDCLBaseWindow panel;
    panel.setDelegate(delegate.get());
    panel.orderFront();
    EXPECT_TRUE(panel.close());
}

TEST_F(AppDelegateTest, second_start_brings_forward_the_window_in_use) {
    launch();
    delegate->loginW().orderOut();
    delegate->applicationShouldHandleReopen();
    EXPECT_TRUE(delegate->loginW().isVisible());

    loginSucceeds();
    delegate->applicationShouldHandleReopen();
    EXPECT_FALSE(delegate->loginW().isVisible());
    EXPECT_TRUE(QTest::qWaitForWindowActive(delegate->loginView().MainW()));

    delegate->loginView().MainW()->orderOut();
    delegate->applicationShouldHandleReopen();
    EXPECT_TRUE(delegate->loginW().isVisible());
}

TEST_F(AppDelegateTest, uninstall_reminder_comes_at_once_or_follows_the_login) {
    const auto isReminderShown = [this] {
        const auto* main = delegate->loginView().MainW();
        const auto* field = main ? main->findChild<QWidget*>(QStringLiteral("vertifyTF")) : nullptr;
        return field && field->isVisible();
    };
    launch();
    delegate->loginW().orderBack();
    delegate->applicationShouldUninstall();
    delegate->applicationShouldUninstall();
    EXPECT_TRUE(delegate->loginW().isVisible());
    loginSucceeds();
    EXPECT_TRUE(isReminderShown());
    QTest::keyClick(delegate->loginView().MainW()->findChild<QWidget*>(QStringLiteral("vertifyTF")), Qt::Key_Escape);
    EXPECT_FALSE(isReminderShown());
    delegate->applicationShouldUninstall();
    EXPECT_TRUE(isReminderShown());

    delegate->loginView().MainW()->orderOut();
    loginSucceeds();
    EXPECT_FALSE(isReminderShown()) << "what was asked for is done";
    delegate->loginView().MainW()->orderOut();
    delegate->applicationShouldUninstall();
    EXPECT_TRUE(delegate->loginW().isVisible()) << "a hidden main window belongs to nobody";
    user.user_deleteUserInfo();
    delegate->loginW().close();
    loginSucceeds();
    EXPECT_FALSE(isReminderShown()) << "who turned away from the login gave it up";
}

}  // namespace
}  // namespace halvane::test
