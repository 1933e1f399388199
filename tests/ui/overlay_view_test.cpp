#include "ui/widgets/OverlayView.h"

#include "ui/widgets/FilledButton.h"
#include "ui/widgets/TextField.h"

#include <gtest/gtest.h>
#include <QAccessible>
#include <QApplication>
#include <QLineEdit>
#include <QTest>
#include <vector>

namespace halvane::ui {
namespace {

class TwoFields final : public OverlayView {
public:
    TwoFields() : OverlayView(QStringLiteral("question"), Ground::Scrim), first(&panel()), second(&panel()) {
        first.setObjectName(QStringLiteral("first"));
        second.setObjectName(QStringLiteral("second"));
        first.setGeometry(10, 10, 80, 30);
        second.setGeometry(10, 50, 80, 30);
        panel().resize(100, 100);
    }
    using OverlayView::overlay;
    using OverlayView::withdraw;

    TextField first;
    TextField second;
    int clicksOutside = 0;

protected:
    [[nodiscard]] QPoint panelPlace(QSize view) const override { return {(view.width() - 100) / 2, (view.height() - 100) / 2}; }
    void cancelOperation() override { withdraw(); }
    void clickedOutside() override { ++clicksOutside; }
};

class OverlayViewTest : public testing::Test {
protected:
    OverlayViewTest() {
        window.resize(400, 300);
        field->setObjectName(QStringLiteral("beneath"));
        field->setGeometry(0, 0, 100, 30);
        window.show();
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        field->setFocus();
    }
    static void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) { QTest::keyClick(QApplication::focusWidget(), key, modifiers); }
    static std::string focused() {
        return QApplication::focusWidget() ? QApplication::focusWidget()->objectName().toStdString() : "nothing";
    }

    QWidget window;
    TextField* field = new TextField(&window);
    TwoFields overlay;
};

TEST_F(OverlayViewTest, keyboard_goes_in_round_and_back_out) {
    overlay.overlay(&window);
    EXPECT_EQ(focused(), "first");
    press(Qt::Key_Tab);
    EXPECT_EQ(focused(), "second");
    press(Qt::Key_Tab);
    EXPECT_EQ(focused(), "first");
    press(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(focused(), "second");
    press(Qt::Key_Escape);
    EXPECT_FALSE(overlay.isOverlaid());
    EXPECT_FALSE(overlay.isVisible());
    EXPECT_EQ(focused(), "beneath");
}

TEST_F(OverlayViewTest, keyboard_returns_to_its_window_when_another_one_was_active) {
    for (const bool activeAtTheEnd : {true, false}) {
        QWidget other;
        QLineEdit elsewhere(&other);
        other.show();
        other.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
        elsewhere.setFocus();
        overlay.overlay(&window);
        if (activeAtTheEnd) {
            window.activateWindow();
            ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
            EXPECT_EQ(focused(), "first");
        }
        overlay.withdraw();
        EXPECT_EQ(window.focusWidget(), field);
    }
}

TEST_F(OverlayViewTest, keyboard_finds_somebody_when_who_had_it_is_gone) {
    auto* stays = new TextField(&window);
    stays->show();
    overlay.overlay(&window);
    delete field;
    overlay.withdraw();
    EXPECT_EQ(window.focusWidget(), stays);
}

TEST_F(OverlayViewTest, nobody_else_gets_the_keyboard_on_its_way_back) {
    overlay.overlay(&window);
    std::vector<QWidget*> way;
    const auto connection = QObject::connect(qApp, &QApplication::focusChanged, [&way](QWidget*, QWidget* now) { way.push_back(now); });
    overlay.withdraw();
    QObject::disconnect(connection);
    EXPECT_EQ(way, std::vector<QWidget*>{field});
}

TEST_F(OverlayViewTest, screen_readers_hear_of_a_dialog) {
    overlay.overlay(&window);
    auto* dialog = QAccessible::queryAccessibleInterface(&overlay);
    EXPECT_EQ(dialog->role(), QAccessible::Dialog);
    EXPECT_EQ(dialog->text(QAccessible::Name), QStringLiteral("question"));
}

TEST_F(OverlayViewTest, covers_its_view_and_follows_its_size) {
    overlay.overlay(&window);
    EXPECT_EQ(overlay.geometry(), window.rect());
    window.resize(640, 480);
    EXPECT_EQ(overlay.geometry(), window.rect());
    EXPECT_EQ(overlay.first.parentWidget()->pos(), QPoint(270, 190));
    QTest::mouseClick(window.childAt(5, 5), Qt::LeftButton, {}, {5, 5});
    QTest::mouseClick(window.childAt(365, 285), Qt::LeftButton, {}, {95, 95});
    EXPECT_EQ(overlay.clicksOutside, 1) << "the panel's own ground is not outside";
    EXPECT_NE(focused(), "beneath");
}

TEST_F(OverlayViewTest, can_be_shown_again_and_again) {
    for (int time = 0; time < 2; ++time) {
        overlay.overlay(&window);
        EXPECT_TRUE(overlay.isVisible());
        overlay.withdraw();
        overlay.withdraw();
        EXPECT_EQ(overlay.parentWidget(), nullptr);
    }
    overlay.overlay(&window);
    overlay.withdraw();
    window.resize(10, 10);
    EXPECT_NE(overlay.size(), window.size()) << "it follows only while it is shown";
}

TEST_F(OverlayViewTest, who_came_by_keyboard_sees_where_the_keyboard_is) {
    auto* button = new FilledButton(QStringLiteral("open"), &window);
    button->setGeometry(0, 40, 100, 40);
    button->show();
    button->setFocus(Qt::TabFocusReason);
    const auto drawn = [button] { return button->grab().toImage(); };
    const QImage withRing = drawn();
    overlay.overlay(&window);
    EXPECT_NE(drawn(), withRing);
    overlay.withdraw();
    EXPECT_TRUE(button->hasFocus());
    EXPECT_EQ(drawn(), withRing);
}

}  // namespace
}  // namespace halvane::ui
