#include "ui/main/SelectAddressWindow.h"

#include "support/MainStory.h"
#include "ui/main/SetSelectAddressCell.h"
#include "ui/widgets/SwitchButton.h"
#include "ui/widgets/TableView.h"

#include <gtest/gtest.h>
#include <QHelpEvent>
#include <QTest>
#include <QToolTip>

namespace halvane::test {
namespace {

using Events = std::vector<std::string>;
using util::Dictionary;
using util::Value;

class SelectAddressWindowTest : public testing::Test {
protected:
    static Value site(const char* name, const char* value) { return Dictionary{{"name", name}, {"value", value}}; }

    void cache(Value::List list) { story.workplaces.saveWorkAddressInfoWithData(std::move(list)); }
    void open() {
        window = &story.panels.systemSetWindow();
        window->makeKeyAndOrderFront();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window));
    }
    void openWithThree() {
        cache({site("枫林T1", "FL1"), site("松岭", "SL"), site("成都", "CD")});
        open();
    }
    ui::TableView& table() { return MainStory::control<ui::TableView>(*window, "MenuTableView"); }
    void click(std::size_t row) { QTest::mouseClick(table().rows().at(row), Qt::LeftButton); }
    void press(Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); }
    /// Names of the rows, with a star at those that are marked.
    std::string rows() {
        std::string all;
        for (const auto* row : table().rows()) all += row->accessibleName().toStdString() + (*row->isChecked() ? "* " : " ");
        return all;
    }
    Events urls() {
        Events all;
        for (const auto& exchange : story.company.transport.exchanges)
            all.push_back(exchange->request.method + " " + exchange->request.url);
        return all;
    }
    static std::string update(const char* value) {
        return std::string("GET http://company.test/api/client/user/work_address/7?work_address=") + value;
    }
    ui::SwitchButton& autoSwitch() { return MainStory::control<ui::SwitchButton>(*window, "autoSwitch"); }

    MainStory story;
    ui::SelectAddressWindow* window = nullptr;
};

TEST_F(SelectAddressWindowTest, without_a_list_there_is_nothing_to_choose) {
    open();
    EXPECT_EQ(rows(), "");
    window->tableViewSelectionDidChange();
    EXPECT_TRUE(urls().empty());
    EXPECT_TRUE(story.log.lines().empty());
    EXPECT_EQ(window->currentSelectIndex(), 0);
}

TEST_F(SelectAddressWindowTest, marks_the_persons_workplace) {
    const struct {
        const char* name;
        Value::List list;
        std::string rows;
    } cases[] = {
        {"among others", {site("枫林T1", "FL1"), site("松岭", "SL"), site("成都", "CD")}, "枫林T1 松岭* 成都 "},
        {"the later of two", {site("松岭", "SL"), site("成都", "CD"), site("松岭新", "SL")}, "松岭 成都 松岭新* "},
        {"in none", {site("枫林T1", "FL1"), site("成都", "CD")}, "枫林T1* 成都 "},
        {"with entries of other kinds", {"SL", Value(), site("成都", "CD"), Dictionary{{"value", "SL"}}}, "成都 SL* "},
    };
    for (const auto& row : cases) {
        MainStory fresh;
        fresh.workplaces.saveWorkAddressInfoWithData(row.list);
        window = &fresh.panels.systemSetWindow();
        EXPECT_EQ(rows(), row.rows) << row.name;
    }
}

TEST_F(SelectAddressWindowTest, nobodys_workplace_matches_no_entry_without_a_value) {
    story.signIn({{"work_address", Value()}});
    cache({site("枫林T1", "FL1"), Dictionary{{"name", "成都"}}});
    open();
    EXPECT_EQ(rows(), "枫林T1* 成都 ");
}

TEST_F(SelectAddressWindowTest, each_choice_is_sent_once_and_at_once) {
    openWithThree();
    click(2);
    EXPECT_EQ(urls(), Events{update("CD")});
    EXPECT_EQ(rows(), "枫林T1 松岭 成都* ");
    click(2);
    EXPECT_EQ(urls().size(), 1u) << "it is chosen already";
    click(0);
    EXPECT_EQ(urls().back(), update("FL1"));
    EXPECT_EQ(story.company.user.user_getUserInfo()->work_address, "SL") << "only a login changes the profile";
}

TEST_F(SelectAddressWindowTest, row_that_is_marked_at_first_can_be_chosen_too) {
    openWithThree();
    click(1);
    EXPECT_EQ(urls(), Events{update("SL")});
}

TEST_F(SelectAddressWindowTest, no_row_sends_nothing) {
    openWithThree();
    table().selectRow(-1);
    window->tableViewSelectionDidChange();
    EXPECT_TRUE(urls().empty());
    EXPECT_EQ(window->currentSelectIndex(), 1);
}

TEST_F(SelectAddressWindowTest, arrow_keys_only_move_because_every_choice_is_sent) {
    openWithThree();
    table().takeKeyboard(Qt::TabFocusReason);
    EXPECT_EQ(MainStory::focused(), "松岭") << "Tab stops at the marked one";
    press(Qt::Key_Up);
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    EXPECT_TRUE(urls().empty());
    press(Qt::Key_Space);
    EXPECT_EQ(urls(), Events{update("CD")});
    press(Qt::Key_Tab);
    EXPECT_EQ(MainStory::focused(), "autoSwitch");
}

TEST_F(SelectAddressWindowTest, answers_are_logged_and_never_shown) {
    openWithThree();
    const Events filling{"dianle 0", "dianle 1", "dianle 2"};
    EXPECT_EQ(story.log.lines(), filling);
    click(2);
    story.company.transport.replyJson(0, R"({"code":200,"msg":"已更新"})");
    click(0);
    story.company.transport.fail(1, util::UrlError::TimedOut, "timed out");
    story.company.mainLoop->runPending();
    EXPECT_TRUE(story.log.contains("已更新"));
    EXPECT_TRUE(story.log.contains("timed out"));
    EXPECT_EQ(rows(), "枫林T1* 松岭 成都 ");
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(SelectAddressWindowTest, list_that_arrives_later_is_for_the_next_start) {
    openWithThree();
    cache({site("武汉", "WH")});
    window->close();
    open();
    EXPECT_EQ(rows(), "枫林T1 松岭* 成都 ");
    window->loadAddressData();
    EXPECT_EQ(window->addressInfos()->size(), 3u) << "the preferences are read once";
}

TEST_F(SelectAddressWindowTest, next_person_sees_and_sends_their_own_choice) {
    openWithThree();
    click(2);
    window->close();
    open();
    EXPECT_EQ(rows(), "枫林T1 松岭 成都* ") << "of the same person, what was chosen";
    window->close();
    story.signIn({{"numId", "8"}, {"work_address", "FL1"}});
    open();
    EXPECT_EQ(rows(), "枫林T1* 松岭 成都 ");
    click(2);
    EXPECT_EQ(urls().size(), 2u);
    EXPECT_EQ(urls().back(), "GET http://company.test/api/client/user/work_address/8?work_address=CD");
}

TEST_F(SelectAddressWindowTest, marked_row_is_in_sight_and_the_opening_key_sets_off_nothing) {
    Value::List list;
    for (int i = 0; i < 30; ++i) list.push_back(Dictionary{{"name", i}, {"value", i}});
    story.signIn({{"work_address", "25"}});
    cache(list);
    open();
    auto* marked = table().rows().at(25);
    EXPECT_TRUE(table().viewport()->rect().contains(marked->mapTo(table().viewport(), marked->rect().center())));
    press(Qt::Key_Return);
    press(Qt::Key_Space);
    EXPECT_TRUE(urls().empty());
    press(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), marked);
}

TEST_F(SelectAddressWindowTest, switch_shows_the_preference_and_keeps_what_the_person_says) {
    auto& preferences = story.company.preferences;
    preferences.set("HDCL_ISAUTOLOGIN", true);
    open();
    EXPECT_TRUE(autoSwitch().isChecked());
    EXPECT_TRUE(story.log.lines().empty()) << "showing is not choosing";
    const int flushes = preferences.flushes;
    QTest::mouseClick(&autoSwitch(), Qt::LeftButton);
    EXPECT_EQ(preferences.get("HDCL_ISAUTOLOGIN"), Value(false));
    autoSwitch().setFocus();
    press(Qt::Key_Return);
    EXPECT_EQ(preferences.get("HDCL_ISAUTOLOGIN"), Value(true));
    EXPECT_EQ(preferences.flushes, flushes) << "the end of the program writes it";
    EXPECT_EQ(story.log.lines(), (Events{"off", "on"}));

    window->close();
    preferences.set("HDCL_ISAUTOLOGIN", false);
    open();
    EXPECT_FALSE(autoSwitch().isChecked()) << "the login window has changed it";
}

TEST_F(SelectAddressWindowTest, long_name_is_repeated_in_its_tool_tip) {
    cache({site("松岭", "SL"), site("松岭软件园北区第十七号楼东侧五层企业服务中心", "SL5")});
    open();
    const auto tipOf = [this](std::size_t row) {
        table().rows()[row]->grab();
        QHelpEvent help(QEvent::ToolTip, {20, 20}, table().rows()[row]->mapToGlobal(QPoint(20, 20)));
        QCoreApplication::sendEvent(table().rows()[row], &help);
        return QToolTip::text();
    };
    EXPECT_EQ(tipOf(0), QString());
    EXPECT_TRUE(tipOf(1).contains(QStringLiteral("企业服务中心")));
}

TEST_F(SelectAddressWindowTest, escape_closes_it) {
    open();
    QTest::keyClick(window, Qt::Key_Escape);
    EXPECT_FALSE(window->isVisible());
}

}  // namespace
}  // namespace halvane::test
