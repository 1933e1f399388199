#include "ui/widgets/TableView.h"

#include "ui/widgets/BorderedButton.h"
#include "ui/widgets/HDCLUICenter.h"
#include "ui/widgets/RowView.h"

#include <gtest/gtest.h>
#include <QAccessible>
#include <QApplication>
#include <QPointer>
#include <QRegularExpression>
#include <QScrollBar>
#include <QTest>

namespace halvane::ui {
namespace {

using Events = std::vector<std::string>;

class NamedRow final : public RowView {
public:
    explicit NamedRow(int row) : RowView({.selected = HDCLUICenter::colorSoft}) {
        setAccessibleName(QStringLiteral("row %1").arg(row));
        setObjectName(accessibleName());
    }
    [[nodiscard]] std::optional<bool> isChecked() const override { return isSelected(); }
    [[nodiscard]] QAccessible::Role role() const override { return QAccessible::RadioButton; }
};

/// A table between two buttons, in a window of its own.
class TableViewTest : public testing::Test {
protected:
    explicit TableViewTest(TableView::Selection selection = TableView::Selection::OnChoice)
        : before(QStringLiteral("before"), BorderedButton::Look::Plain, &window),
          table(QStringLiteral("rows"), {.rowHeight = 40, .selection = selection},
                {.numberOfRows = [this] { return count; }, .viewForRow = [this](int row, RowView* old) { return viewForRow(row, old); }},
                &window),
          after(QStringLiteral("after"), BorderedButton::Look::Plain, &window) {
        before.setObjectName(QStringLiteral("before"));
        after.setObjectName(QStringLiteral("after"));
        window.resize(300, 400);
        table.setGeometry(0, 50, 300, 160);
        table.selectionDidChange = [this] {
            chosen.push_back(table.selectedRow());
            if (reloads) table.reloadData();
        };
        table.reloadData();
        window.show();
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    RowView* viewForRow(int row, RowView* old) {
        if (old && !makesNew) return old;
        auto* made = new NamedRow(row);
        if (withButtons) {
            auto* button = new BorderedButton(QStringLiteral("do"), BorderedButton::Look::Plain, made);
            button->setObjectName(QStringLiteral("button %1").arg(row));
        }
        return made;
    }
    void click(int row) { QTest::mouseClick(table.rows().at(static_cast<std::size_t>(row)), Qt::LeftButton); }
    static void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) { QTest::keyClick(QApplication::focusWidget(), key, modifiers); }
    static std::string focused() {
        return QApplication::focusWidget() ? QApplication::focusWidget()->objectName().toStdString() : "nothing";
    }

    int count = 6;
    bool makesNew = false;
    bool withButtons = false;
    bool reloads = false;
    std::vector<int> chosen;
    QWidget window;
    BorderedButton before;
    TableView table;
    BorderedButton after;
};

class MenuTableTest : public TableViewTest {
protected:
    MenuTableTest() : TableViewTest(TableView::Selection::FollowsKeyboard) {}
};

TEST_F(TableViewTest, only_a_change_of_the_selection_is_told) {
    click(2);
    click(2);
    click(4);
    press(Qt::Key_Space);
    press(Qt::Key_Up);
    press(Qt::Key_Return);
    EXPECT_EQ(chosen, (std::vector<int>{2, 4, 3}));
    table.selectRow(0);
    table.selectRow(-1);
    EXPECT_EQ(table.selectedRow(), -1);
    EXPECT_EQ(chosen.size(), 3u) << "who selects for the person knows it";
    click(3);
    EXPECT_EQ(chosen.back(), 3);
}

TEST_F(TableViewTest, a_click_that_ends_elsewhere_chooses_nothing) {
    RowView* row = table.rows()[1];
    QTest::mousePress(row, Qt::LeftButton);
    QTest::mouseRelease(row, Qt::LeftButton, {}, {10, 100});
    QTest::mouseClick(row, Qt::RightButton);
    EXPECT_TRUE(chosen.empty());
}

TEST_F(TableViewTest, arrow_keys_move_without_choosing_and_stop_at_the_ends) {
    before.setFocus(Qt::TabFocusReason);
    press(Qt::Key_Tab);
    Events way{focused()};
    for (const auto key :
         {Qt::Key_Up, Qt::Key_Down, Qt::Key_Down, Qt::Key_End, Qt::Key_Down, Qt::Key_PageUp, Qt::Key_Home, Qt::Key_PageDown}) {
        press(key);
        way.push_back(focused());
    }
    EXPECT_EQ(way, (Events{"row 0", "row 0", "row 1", "row 2", "row 5", "row 5", "row 1", "row 0", "row 4"}));
    EXPECT_TRUE(chosen.empty());
    EXPECT_GT(table.verticalScrollBar()->value(), 0) << "the row with the keyboard is in sight";
}

TEST_F(MenuTableTest, selection_goes_with_the_keyboard_where_that_costs_nothing) {
    table.selectRow(1);
    table.takeKeyboard(Qt::TabFocusReason);
    press(Qt::Key_Down);
    press(Qt::Key_End);
    EXPECT_EQ(chosen, (std::vector<int>{2, 5}));
}

TEST_F(TableViewTest, tab_stops_once_at_the_row_that_was_used_last) {
    click(3);
    before.setFocus(Qt::TabFocusReason);
    press(Qt::Key_Tab);
    EXPECT_EQ(focused(), "row 3");
    press(Qt::Key_Tab);
    EXPECT_EQ(focused(), "after");
    press(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(focused(), "row 3");
}

TEST_F(TableViewTest, rows_made_anew_keep_their_place_for_tab_and_the_keyboard) {
    makesNew = withButtons = true;
    table.reloadData();
    table.takeKeyboard(Qt::TabFocusReason);
    press(Qt::Key_Down);
    const QPointer<QWidget> old = QApplication::focusWidget();
    table.reloadData();
    EXPECT_EQ(focused(), "row 1");
    EXPECT_NE(QApplication::focusWidget(), old);
    press(Qt::Key_Tab);
    EXPECT_EQ(focused(), "button 1");
    press(Qt::Key_Down);
    EXPECT_EQ(focused(), "row 2") << "the arrow keys go on from a row's button";
    for (int each = 0; each < 4; ++each) press(Qt::Key_Tab);
    press(Qt::Key_Tab);
    EXPECT_EQ(focused(), "after");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(old.isNull());
    EXPECT_EQ(table.findChildren<QWidget*>(QRegularExpression(QStringLiteral("^row "))).size(), 6);
}

TEST_F(TableViewTest, reload_out_of_a_choice_is_safe_and_follows_the_number_of_rows) {
    reloads = makesNew = true;
    click(5);
    EXPECT_EQ(table.selectedRow(), 5);
    EXPECT_TRUE(table.rows()[5]->isSelected());
    count = 3;
    table.reloadData();
    EXPECT_EQ(table.rows().size(), 3u);
    EXPECT_EQ(table.selectedRow(), -1);
    count = 0;
    table.reloadData();
    before.setFocus(Qt::TabFocusReason);
    press(Qt::Key_Tab);
    EXPECT_EQ(focused(), "after") << "an empty table is no stop";
}

TEST_F(TableViewTest, screen_readers_see_a_list_of_named_rows_with_their_state_and_can_choose) {
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&table)->role(), QAccessible::List);
    auto* row = QAccessible::queryAccessibleInterface(table.rows()[2]);
    EXPECT_EQ(row->role(), QAccessible::RadioButton);
    EXPECT_EQ(row->text(QAccessible::Name), QStringLiteral("row 2"));
    EXPECT_FALSE(row->state().checked);
    row->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(chosen, std::vector<int>{2});
    EXPECT_TRUE(row->state().checkable && row->state().checked && row->state().selected && row->state().focusable);
}

TEST_F(TableViewTest, rows_keep_their_width_when_there_is_nothing_to_scroll) {
    const int width = table.rows()[0]->width();
    EXPECT_TRUE(table.verticalScrollBar()->isEnabled());
    count = 2;
    table.reloadData();
    EXPECT_EQ(table.rows()[0]->width(), width);
    EXPECT_FALSE(table.verticalScrollBar()->isEnabled()) << "no thumb";
}

}  // namespace
}  // namespace halvane::ui
