#include "ui/main/MainView.h"

#include "support/MainStory.h"
#include "ui/main/MainMenuCell.h"
#include "ui/main/MainMenuHeadView.h"
#include "ui/main/MainRightOperationView.h"
#include "ui/widgets/PageView.h"
#include "ui/widgets/TableView.h"

#include <gtest/gtest.h>
#include <QLineEdit>
#include <QTest>

namespace halvane::test {
namespace {

using Events = std::vector<std::string>;

class MainViewTest : public testing::Test {
protected:
    MainViewTest() { open(); }

    void open() {
        window = story.makeMainWindow();
        window->makeKeyAndOrderFront();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }
    ui::MainLeftMenuView& menu() { return window->mainView().leftMenuView(); }
    ui::TableView& table() { return MainStory::control<ui::TableView>(menu(), "tableView"); }
    ui::MainMenuCell& entry(std::size_t index) { return dynamic_cast<ui::MainMenuCell&>(*table().rows().at(index)); }
    void click(std::size_t index) { QTest::mouseClick(&entry(index), Qt::LeftButton); }
    std::string shownPage() { return window->mainView().rightOperationView().shownPage()->accessibleName().toStdString(); }
    /// Of the five entries, the images that they show.
    std::string images() {
        std::string all;
        for (std::size_t i = 0; i < 5; ++i) all += entry(i).imageName().toStdString().substr(4) + " ";
        return all;
    }
    void press(Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); }

    MainStory story;
    std::unique_ptr<ui::MainWindow> window;
};

TEST_F(MainViewTest, opens_with_the_first_page_and_its_entry_selected) {
    EXPECT_EQ(shownPage(), "安全");
    EXPECT_EQ(menu().curSelectIndex(), 0);
    EXPECT_EQ(images(), "select_safe unselect_mydevice unselect_vpn unselect_servicemsg unselect_clean ");
    EXPECT_FALSE(story.log.contains("选中了第")) << "nobody selected anything";
}

TEST_F(MainViewTest, each_entry_shows_its_page_and_keeps_the_others_as_they_were) {
    const auto pages = window->mainView().rightOperationView().viewControllers();
    ASSERT_EQ(pages.size(), 5u);
    Events shown;
    for (const std::size_t index : {4u, 1u, 2u, 3u, 0u}) {
        click(index);
        shown.push_back(shownPage());
        for (const auto* page : pages) EXPECT_EQ(page->isVisible(), page == pages[index]);
        EXPECT_EQ(pages[index]->size(), QSize(746, 614));
    }
    EXPECT_EQ(shown, (Events{"功能", "设备", "网络", "服务", "安全"}));
    EXPECT_EQ(window->mainView().rightOperationView().viewControllers(), pages);
    EXPECT_EQ(story.log.lines(), (Events{"选中了第 4 row", "选中了第 1 row", "选中了第 2 row", "选中了第 3 row", "选中了第 0 row"}));
}

TEST_F(MainViewTest, entry_that_is_selected_already_does_nothing_again) {
    click(2);
    click(2);
    EXPECT_EQ(story.log.lines(), Events{"选中了第 2 row"});
}

TEST_F(MainViewTest, reloading_and_selecting_without_a_person_keep_menu_and_page_together) {
    menu().selectMenuIndex(3);
    EXPECT_EQ(shownPage(), "服务");
    menu().reloadTableView();
    EXPECT_EQ(table().selectedRow(), 3);
    EXPECT_EQ(images(), "unselect_safe unselect_mydevice unselect_vpn select_servicemsg unselect_clean ");
    menu().selectMenuIndex(5);
    menu().selectMenuIndex(-1);
    EXPECT_EQ(menu().curSelectIndex(), 3);
}

TEST_F(MainViewTest, whole_menu_works_by_keyboard) {
    EXPECT_EQ(MainStory::focused(), "安全");
    story.control<QWidget>(menu(), "headView").setFocus(Qt::TabFocusReason);
    press(Qt::Key_Tab);
    EXPECT_EQ(MainStory::focused(), "安全");
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    EXPECT_EQ(shownPage(), "网络");
    press(Qt::Key_Tab);
    EXPECT_EQ(MainStory::focused(), "connectBtn") << "from the menu into the page that is shown";
}

TEST_F(MainViewTest, head_shows_who_is_signed_in) {
    auto& head = story.control<ui::MainMenuHeadView>(menu(), "headView");
    EXPECT_EQ(head.text(), QStringLiteral("陈晓"));
    story.signIn({{"nick_name", "A&B"}});
    open();
    EXPECT_EQ(story.control<ui::MainMenuHeadView>(menu(), "headView").text(), QStringLiteral("A&B"));
    EXPECT_TRUE(story.control<ui::MainMenuHeadView>(menu(), "headView").shortcut().isEmpty());
    story.signIn({{"nick_name", util::Value()}});
    open();
    EXPECT_EQ(story.control<ui::MainMenuHeadView>(menu(), "headView").text(), QString());
    EXPECT_FALSE(story.control<QWidget>(menu(), "headView").accessibleName().isEmpty()) << "a button always has a name";
}

TEST_F(MainViewTest, workplaces_are_asked_once_for_each_main_window) {
    const auto& exchanges = story.company.transport.exchanges;
    ASSERT_EQ(exchanges.size(), 1u);
    EXPECT_EQ(exchanges[0]->request.url, "http://company.test/api/client/chat/contact_list?current_page=0&length=1");
    open();
    EXPECT_EQ(exchanges.size(), 2u);
}

TEST_F(MainViewTest, list_of_workplaces_is_kept_only_from_a_reply_that_has_one) {
    const struct {
        const char* name;
        const char* reply;
        bool kept;
    } rows[] = {
        {"number", R"({"code":200,"data":{"work_address_list":[{"name":"松岭","value":"SL"}]}})", true},
        {"text", R"({"code":"200","data":{"work_address_list":[{"name":"松岭","value":"SL"}]}})", true},
        {"empty list", R"({"code":200,"data":{"work_address_list":[]}})", true},
        {"refused", R"({"code":401,"data":{"work_address_list":[]}})", false},
        {"no data", R"({"code":200})", false},
        {"null data", R"({"code":200,"data":null})", false},
        {"data of another kind", R"({"code":200,"data":[1]})", false},
        {"no list", R"({"code":200,"data":{}})", false},
        {"list of another kind", R"({"code":200,"data":{"work_address_list":{"name":"松岭"}}})", false},
        {"null list", R"({"code":200,"data":{"work_address_list":null}})", false},
        {"no object", R"([])", false},
        {"no JSON", R"(<html>)", false},
    };
    for (const auto& row : rows) {
        story.workplaces.saveWorkAddressInfoWithData(util::Value::List{util::Value("before")});
        const int flushes = story.company.preferences.flushes;
        open();
        story.company.transport.replyJson(story.company.transport.exchanges.size() - 1, row.reply);
        story.company.mainLoop->runPending();
        EXPECT_EQ(story.workplaces.getWorkAddressInfo() != util::Value::List{util::Value("before")}, row.kept) << row.name;
        EXPECT_EQ(story.company.preferences.flushes - flushes, row.kept ? 1 : 0) << row.name;
    }
}

TEST_F(MainViewTest, reply_may_come_when_the_window_is_gone) {
    window.reset();
    story.company.transport.replyJson(0, R"({"code":200,"data":{"work_address_list":[1,2]}})");
    story.company.mainLoop->runPending();
    EXPECT_EQ(story.workplaces.getWorkAddressInfo()->size(), 2u);
}

TEST_F(MainViewTest, pages_keep_what_was_done_on_them) {
    click(4);
    story.control<QWidget>(window->mainView(), "gridView").findChildren<QPushButton*>().at(1)->click();
    auto& field = story.control<QLineEdit>(window->mainView(), "romateCodeTF");
    QTest::keyClicks(&field, QStringLiteral("123"));
    click(0);
    EXPECT_FALSE(field.isVisible());
    click(4);
    EXPECT_TRUE(field.isVisible());
    EXPECT_EQ(field.text(), QStringLiteral("123"));
}

TEST_F(MainViewTest, uninstall_reminder_lies_over_the_window_and_is_made_once) {
    window->orderBack();
    window->move(50, 5);
    window->mainView().showUninstallAlert();
    auto* alert = window->mainView().findChild<QWidget*>(QStringLiteral("vertifyTF"));
    ASSERT_NE(alert, nullptr);
    EXPECT_TRUE(alert->isVisible());
    EXPECT_EQ(MainStory::focused(), "vertifyTF");
    QTest::keyClicks(alert, QStringLiteral("48"));
    window->mainView().showUninstallAlert();
    EXPECT_EQ(window->mainView().findChildren<QWidget*>(QStringLiteral("vertifyTF")).size(), 1);
    press(Qt::Key_Escape);
    EXPECT_FALSE(alert->isVisible());
    window->mainView().showUninstallAlert();
    EXPECT_EQ(story.control<QLineEdit>(window->mainView(), "vertifyTF").text(), QStringLiteral("48"));
    // As far as the screen of this test has room for it.
    EXPECT_EQ(window->pos().x(), 0);
    EXPECT_EQ(window->geometry().center().y(), window->screen()->availableGeometry().center().y());
}

TEST_F(MainViewTest, uninstall_reminder_closes_the_pop_over_beneath_it) {
    menu().showSetMenu();
    window->mainView().showUninstallAlert();
    EXPECT_FALSE(story.control<QWidget>(window->mainView(), "vertifyTF").isHidden());
    EXPECT_EQ(window->mainView().findChild<QWidget*>(QStringLiteral("popver")), nullptr);
    window.reset();  // with the reminder shown
}

}  // namespace
}  // namespace halvane::test
