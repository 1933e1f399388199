#include "ui/main/SetViewController.h"

#include "support/MainStory.h"
#include "ui/widgets/RowView.h"
#include "ui/widgets/TableView.h"

#include <gtest/gtest.h>
#include <QCursor>
#include <QLabel>
#include <QPointer>
#include <QScreen>
#include <QTest>

namespace halvane::test {
namespace {

using Events = std::vector<std::string>;

/// The person's menu, opened from the head of the main window's left menu.
class SetMenuTest : public testing::Test {
protected:
    SetMenuTest() {
        story.notifications.addObserver("HDCL_Notification_Logout", [this] {
            story.events.push_back(story.company.user.user_isLogin() ? "logout, still signed in" : "logout, too late");
        });
        story.updater.situation = [this] { return menu().popver() ? " with the pop-over" : ""; };
        open();
    }

    void open() {
        window = story.makeMainWindow();
        window->makeKeyAndOrderFront();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }
    ui::MainLeftMenuView& menu() { return window->mainView().leftMenuView(); }
    void clickHead() { QTest::mouseClick(&story.control<QWidget>(menu(), "headView"), Qt::LeftButton); }
    bool isOpen() { return menu().popver() && menu().popver()->isOverlaid(); }
    ui::TableView& rows() { return story.control<ui::TableView>(*menu().popver(), "tableView"); }
    void choose(std::size_t row) {
        clickHead();
        QTest::mouseClick(rows().rows().at(row), Qt::LeftButton);
    }
    std::string label(const char* name) { return story.control<QLabel>(*menu().popver(), name).text().toStdString(); }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) { QTest::keyClick(QApplication::focusWidget(), key, modifiers); }

    MainStory story;
    std::unique_ptr<ui::MainWindow> window;
};

TEST_F(SetMenuTest, shows_who_is_signed_in_and_three_rows_below_the_head) {
    EXPECT_EQ(menu().popver(), nullptr) << "made when it is first shown";
    clickHead();
    ASSERT_TRUE(isOpen());
    EXPECT_EQ(label("nameLabel"), "姓名：陈晓");
    EXPECT_EQ(label("departmentLabel"), "部门：信息技术部");
    EXPECT_EQ(label("emailLabel"), "chen.xiao@example.com");
    Events titles;
    for (const auto* row : rows().rows()) titles.push_back(row->accessibleName().toStdString());
    EXPECT_EQ(titles, (Events{"检查更新", "关于我们", "系统设置"}));
    EXPECT_EQ(rows().parentWidget()->geometry().topLeft(), QPoint(12, 84));
}

TEST_F(SetMenuTest, what_the_server_did_not_say_reads_as_the_null_text) {
    story.signIn({{"nick_name", util::Value()}, {"department_name", util::Value()}, {"email", util::Value()}});
    open();
    clickHead();
    EXPECT_EQ(label("nameLabel"), "姓名：(null)");
    EXPECT_EQ(label("departmentLabel"), "部门：(null)");
    EXPECT_EQ(label("emailLabel"), "");
}

TEST_F(SetMenuTest, head_escape_and_a_click_beside_close_it_and_keep_it) {
    clickHead();
    const auto* first = menu().popver();
    menu().showSetMenu();
    EXPECT_FALSE(isOpen());
    clickHead();
    press(Qt::Key_Escape);
    EXPECT_FALSE(isOpen());
    clickHead();
    QTest::mouseClick(menu().popver(), Qt::LeftButton, {}, {600, 500});
    EXPECT_FALSE(isOpen());
    clickHead();
    // Whoever clicks where the head is meets the pop-over's ground, and means to close it.
    QTest::mouseClick(menu().popver(), Qt::LeftButton, {}, {60, 40});
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(menu().popver(), first) << "only an entry that runs drops it";
}

TEST_F(SetMenuTest, head_looks_pressed_as_long_as_it_is_open) {
    QCursor::setPos(window->screen()->geometry().bottomRight());
    auto& head = story.control<QWidget>(menu(), "headView");
    const QImage before = head.grab().toImage();
    menu().showSetMenu();
    EXPECT_NE(head.grab().toImage(), before);
    press(Qt::Key_Escape);
    EXPECT_EQ(head.grab().toImage(), before);
}

TEST_F(SetMenuTest, keyboard_opens_walks_and_returns) {
    story.control<QWidget>(menu(), "headView").setFocus(Qt::TabFocusReason);
    press(Qt::Key_Return);
    EXPECT_EQ(MainStory::focused(), "检查更新");
    press(Qt::Key_Down);
    press(Qt::Key_Tab);
    EXPECT_EQ(MainStory::focused(), "关于我们") << "Tab finds nothing else inside";
    press(Qt::Key_Escape);
    EXPECT_EQ(MainStory::focused(), "headView");
    press(Qt::Key_Space);
    press(Qt::Key_Up);
    press(Qt::Key_Return);
    EXPECT_EQ(story.events, Events{"interactive update check"});
    EXPECT_EQ(MainStory::focused(), "headView");
}

TEST_F(SetMenuTest, update_check_runs_when_the_pop_over_is_gone) {
    clickHead();
    const QPointer<QWidget> popOver = menu().popver();
    QTest::mouseClick(rows().rows().at(0), Qt::LeftButton);
    EXPECT_EQ(story.events, Events{"interactive update check"});
    EXPECT_EQ(menu().popver(), nullptr);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(popOver.isNull());
}

TEST_F(SetMenuTest, about_panel_is_one_retitled_and_checks_once) {
    EXPECT_EQ(story.panels.versionPanel().windowTitle(), QStringLiteral("更新提示"));
    for (int time = 0; time < 2; ++time) {
        choose(1);
        EXPECT_EQ(menu().popver(), nullptr);
        auto& panel = story.panels.versionPanel();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&panel));
        EXPECT_EQ(panel.windowTitle(), QStringLiteral("关于我们"));
        EXPECT_EQ(panel.size(), QSize(400, 300));
        panel.close();
    }
    EXPECT_EQ(story.versionPanelsMade, 1);
    EXPECT_EQ(story.events, Events{"update information"});
}

TEST_F(SetMenuTest, settings_window_is_one_for_every_main_window) {
    choose(2);
    auto* settings = &story.panels.systemSetWindow();
    EXPECT_TRUE(settings->isVisible());
    EXPECT_EQ(settings->windowTitle(), QStringLiteral("设置"));
    EXPECT_EQ(settings->size(), QSize(300, 400));
    open();
    choose(2);
    EXPECT_EQ(&story.panels.systemSetWindow(), settings);
}

TEST_F(SetMenuTest, logout_is_understood_though_the_list_does_not_offer_it) {
    choose(2);
    clickHead();
    ASSERT_TRUE(story.company.user.user_isLogin());
    menu().popver()->didSelectRow(3);
    EXPECT_EQ(story.events, (Events{"logout, still signed in", "login window"}));
    EXPECT_FALSE(story.company.user.user_isLogin());
    EXPECT_FALSE(window->isVisible());
    EXPECT_FALSE(story.panels.systemSetWindow().isVisible()) << "it speaks for who left";
    EXPECT_EQ(menu().popver(), nullptr);
}

TEST_F(SetMenuTest, rows_beyond_the_known_ones_do_nothing) {
    clickHead();
    menu().popver()->didSelectRow(5);
    menu().popver()->didSelectRow(-1);
    EXPECT_TRUE(isOpen());
    EXPECT_TRUE(story.events.empty());
}

TEST_F(SetMenuTest, window_that_goes_takes_its_pop_over_along) {
    clickHead();
    const QPointer<QWidget> popOver = menu().popver();
    window.reset();
    EXPECT_TRUE(popOver.isNull());
}

TEST_F(SetMenuTest, long_names_are_elided_inside_the_panel) {
    story.signIn({{"nick_name", std::string(60, 'N')}, {"department_name", std::string(200, 'D')}, {"email", std::string(120, 'e')}});
    open();
    clickHead();
    for (const char* name : {"nameLabel", "departmentLabel", "emailLabel"}) {
        const auto& text = story.control<QLabel>(*menu().popver(), name);
        EXPECT_TRUE(text.parentWidget()->rect().contains(text.geometry())) << name;
        EXPECT_EQ(text.toolTip(), text.text()) << name;
    }
    EXPECT_EQ(story.control<QWidget>(menu(), "headView").geometry(), QRect(8, 12, 184, 68)) << "the head keeps its place";
}

}  // namespace
}  // namespace halvane::test
