#include "ui/widgets/AlertSheet.h"
#include "ui/widgets/CheckButton.h"
#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/FilledButton.h"
#include "ui/widgets/HDCLBaseWindow.h"
#include "ui/widgets/HDCLUICenter.h"
#include "ui/widgets/IconTextField.h"
#include "ui/widgets/LinkButton.h"

#include <gtest/gtest.h>
#include <QApplication>
#include <QClipboard>
#include <QHelpEvent>
#include <QMenu>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>
#include <memory>

namespace halvane::test {
namespace {

using C = ui::HDCLUICenter;

/// A window with one control of each kind, in the order of Tab.
class ControlsTest : public testing::Test {
protected:
    ControlsTest() {
        field.setGeometry(20, 20, 266, 44);
        button.setVisibleGeometry({20, 80, 266, 44});
        check.setGeometry(QRect(QPoint(20, 140), check.sizeHint()));
        link.setGeometry(QRect(QPoint(180, 140), link.sizeHint()));
        window.setContentSize({310, 200});
        // A pointer that the platform believes to be over a control would make it look hovered.
        QCursor::setPos(window.screen()->geometry().bottomRight());
        window.makeKeyAndOrderFront();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    static QColor pixel(QWidget& widget, int x, int y) { return widget.grab().toImage().pixelColor(x, y); }
    /// Where the ring of a control runs, in the middle of its left side.
    static QColor ringPixel(QWidget& widget) { return pixel(widget, 0, widget.height() / 2); }
    bool hasRing(QWidget& widget) { return ringPixel(widget) == QColor(C::colorInk); }

    ui::HDCLBaseWindow window;
    ui::IconTextField field{QStringLiteral("ui_user"), &window};
    ui::FilledButton button{QStringLiteral("登录"), &window};
    ui::CheckButton check{QStringLiteral("自动登录"), &window};
    ui::LinkButton link{QStringLiteral("忘记密码"), &window};
};

TEST_F(ControlsTest, focus_ring_comes_with_the_keyboard_only) {
    for (QWidget* control : {static_cast<QWidget*>(&button), static_cast<QWidget*>(&check), static_cast<QWidget*>(&link)}) {
        field.setFocus();
        QTest::mouseClick(control, Qt::LeftButton);
        EXPECT_FALSE(hasRing(*control)) << "after a click";
        control->setFocus(Qt::OtherFocusReason);
        EXPECT_FALSE(hasRing(*control)) << "after the program gave the focus";
        field.setFocus();
        control->setFocus(Qt::TabFocusReason);
        EXPECT_TRUE(hasRing(*control)) << "after Tab";
        field.setFocus(Qt::TabFocusReason);
        EXPECT_FALSE(hasRing(*control)) << "after Tab went on";
    }
}

TEST_F(ControlsTest, focus_ring_survives_a_change_of_windows) {
    button.setFocus(Qt::TabFocusReason);
    QFocusEvent out(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
    QFocusEvent in(QEvent::FocusIn, Qt::ActiveWindowFocusReason);
    QCoreApplication::sendEvent(&button, &out);
    QCoreApplication::sendEvent(&button, &in);
    EXPECT_TRUE(hasRing(button));
}

TEST_F(ControlsTest, button_shows_pointer_press_busy_and_disabled) {
    const auto ground = [this] { return pixel(button, button.width() / 2, C::ringMargin + 5); };
    EXPECT_EQ(ground(), QColor(C::colorThemeOrange));
    QTest::mousePress(&button, Qt::LeftButton);
    EXPECT_EQ(ground(), QColor(C::colorThemeOrangePressed));
    QTest::mouseRelease(&button, Qt::LeftButton);
    button.setGround(ui::FilledButton::Ground::Busy);
    EXPECT_EQ(ground(), QColor(C::colorBusy));
    QTest::mousePress(&button, Qt::LeftButton);
    EXPECT_EQ(ground(), QColor(C::colorBusy)) << "looks inactive";
    QTest::mouseRelease(&button, Qt::LeftButton);
    button.setEnabled(false);
    EXPECT_EQ(ground(), QColor(C::colorDisabledGround));
}

TEST_F(ControlsTest, enter_and_space_click_a_button_once) {
    QSignalSpy clicks(&button, &QPushButton::clicked);
    for (const auto key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
        clicks.clear();
        QTest::keyClick(&button, key);
        EXPECT_EQ(clicks.count(), 1) << "key " << key;
    }
    clicks.clear();
    QKeyEvent held(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QString(), true);
    QCoreApplication::sendEvent(&button, &held);
    EXPECT_EQ(clicks.count(), 0) << "a key that is held down";
}

TEST_F(ControlsTest, check_button_toggles_on_box_title_and_space) {
    EXPECT_FALSE(check.isChecked());
    QTest::mouseClick(&check, Qt::LeftButton, Qt::NoModifier, {C::ringMargin + 12, check.height() / 2});
    EXPECT_TRUE(check.isChecked());
    QTest::mouseClick(&check, Qt::LeftButton, Qt::NoModifier, {check.width() - C::ringMargin - 6, check.height() / 2});
    EXPECT_FALSE(check.isChecked());
    QTest::keyClick(&check, Qt::Key_Space);
    EXPECT_TRUE(check.isChecked());
}

TEST_F(ControlsTest, field_draws_a_thicker_border_while_it_has_the_keyboard) {
    const int y = field.height() / 2;
    button.setFocus();
    EXPECT_EQ(pixel(field, 0, y), QColor(C::colorEdge));
    EXPECT_EQ(pixel(field, 1, y), QColor(C::colorCard));
    field.setFocus();
    EXPECT_EQ(pixel(field, 0, y), QColor(C::colorInk));
    EXPECT_EQ(pixel(field, 1, y), QColor(C::colorInk));
    EXPECT_EQ(pixel(field, 2, y), QColor(C::colorCard));
}

TEST_F(ControlsTest, tab_selects_a_name_but_types_in_front_of_a_bare_suffix) {
    const struct {
        const char* text;
        const char* afterTyping;
    } rows[] = {{"@example.com", "x@example.com"}, {"chen@example.com", "x"}, {"", "x"}};
    for (const auto& [text, afterTyping] : rows) {
        button.setFocus();
        field.setText(QString::fromLatin1(text));
        field.setFocus(Qt::TabFocusReason);
        QTest::keyClick(&field, Qt::Key_X);
        EXPECT_EQ(field.text().toStdString(), afterTyping) << text;
    }
}

TEST_F(ControlsTest, password_shows_dots_and_its_placeholder_keeps_its_size) {
    field.setEchoMode(QLineEdit::Password);
    const int placeholderSize = field.font().pixelSize();
    field.setText(QStringLiteral("geheim"));
    EXPECT_EQ(field.displayText(), QString(6, field.displayText().front()));
    EXPECT_LT(field.font().pixelSize(), placeholderSize);
    field.clear();
    EXPECT_EQ(field.font().pixelSize(), placeholderSize);
}

TEST_F(ControlsTest, context_menu_works_in_the_interfaces_language_and_never_copies_a_password) {
    for (const auto mode : {QLineEdit::Normal, QLineEdit::Password}) {
        field.setEchoMode(mode);
        field.setText(QStringLiteral("geheim"));
        field.selectAll();
        QGuiApplication::clipboard()->setText(QStringLiteral("before"));
        QContextMenuEvent event(QContextMenuEvent::Mouse, {5, 5}, field.mapToGlobal(QPoint(5, 5)));
        QCoreApplication::sendEvent(&field, &event);
        QPointer<QMenu> menu(qobject_cast<QMenu*>(QApplication::activePopupWidget()));
        ASSERT_FALSE(menu.isNull());
        for (QAction* action : menu->actions()) {
            if (action->isSeparator()) continue;
            EXPECT_GT(action->text().front().unicode(), 0x4E00) << action->text().toStdString();
            if (action->text() == QStringLiteral("拷贝")) action->trigger();
        }
        EXPECT_EQ(QGuiApplication::clipboard()->text(), mode == QLineEdit::Normal ? field.text() : QStringLiteral("before"));
        menu->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_TRUE(menu.isNull());
    }
}

TEST(ElidedLabelTest, repeats_in_its_tool_tip_only_what_does_not_fit) {
    const QString wide = QStringLiteral("用户名或密码不正确，请检查后重新输入；连续输错五次后账号将被锁定三十分钟");
    const struct {
        const char* name;
        QString text;
        bool tip;
    } rows[] = {{"fits", QStringLiteral("登陆出错"), false},
                {"empty", {}, false},
                {"too wide", wide, true},
                {"two lines", QStringLiteral("第一行\n第二行"), true}};
    ui::ElidedLabel label;
    label.resize(266, 32);
    label.show();
    for (const auto& [name, text, tip] : rows) {
        label.setWholeText(text);
        EXPECT_EQ(label.text(), text) << name;
        EXPECT_EQ(label.toolTip(), tip ? text : QString()) << name;
        EXPECT_LE(label.fontMetrics().horizontalAdvance(label.shownText()), 266) << name;
        EXPECT_FALSE(label.shownText().contains(u'\n')) << name;
    }
    label.setWholeText(wide);
    label.resize(2000, 32);
    EXPECT_TRUE(label.toolTip().isEmpty()) << "once there is room";
}

TEST(ElidedLabelTest, markup_of_others_is_shown_and_not_followed) {
    ui::ElidedLabel label;
    label.resize(60, 32);
    label.setWholeText(QStringLiteral("<img src='http://127.0.0.1:9/x'><b>固定</b>"));
    EXPECT_EQ(label.shownText().front(), u'<');
    label.show();
    QHelpEvent event(QEvent::ToolTip, {5, 5}, label.mapToGlobal(QPoint(5, 5)));
    QCoreApplication::sendEvent(&label, &event);
    EXPECT_TRUE(QToolTip::text().contains(QStringLiteral("&lt;img")));
    QToolTip::hideText();
}

class AlertSheetTest : public testing::Test {
protected:
    static ui::AlertSheet* shown() { return dynamic_cast<ui::AlertSheet*>(QApplication::activeModalWidget()); }
    static void settle() {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
};

TEST_F(AlertSheetTest, stands_on_the_first_window_and_returns_at_once) {
    ui::HDCLBaseWindow first;
    first.setWindowTitle(QStringLiteral("Halvane"));
    first.orderFront();
    ui::HDCLBaseWindow second;
    second.makeKeyAndOrderFront();
    ui::AlertSheet::present(QStringLiteral("请输入用户名密码!"));
    ASSERT_NE(shown(), nullptr);
    EXPECT_EQ(shown()->parentWidget(), &first);
    EXPECT_EQ(shown()->windowTitle(), QStringLiteral("Halvane"));
    QStringList texts;
    for (const auto* label : shown()->findChildren<QLabel*>()) texts << label->text();
    EXPECT_EQ(texts, (QStringList{QStringLiteral("提示"), QStringLiteral("请输入用户名密码!")}));
    const auto buttons = shown()->findChildren<QPushButton*>();
    ASSERT_EQ(buttons.size(), 1);
    EXPECT_EQ(buttons.front()->text(), QStringLiteral("确定"));

    QTest::mouseClick(buttons.front(), Qt::LeftButton);
    settle();
    EXPECT_EQ(shown(), nullptr);
    EXPECT_TRUE(first.findChildren<QDialog*>().isEmpty()) << "deleted after the answer";
}

TEST_F(AlertSheetTest, enter_and_escape_answer_it_wherever_the_keyboard_is) {
    ui::HDCLBaseWindow window;
    window.makeKeyAndOrderFront();
    for (const auto key : {Qt::Key_Return, Qt::Key_Escape}) {
        ui::AlertSheet::present(QStringLiteral("请输入用户名密码!"));
        ASSERT_NE(shown(), nullptr);
        QTest::keyClick(shown(), key);
        settle();
        EXPECT_EQ(shown(), nullptr) << "key " << key;
    }
}

TEST_F(AlertSheetTest, long_text_makes_it_taller_and_nothing_is_cut) {
    ui::HDCLBaseWindow window;
    window.orderFront();
    ui::AlertSheet sheet(QString(60, u'长'), &window);
    sheet.setAttribute(Qt::WA_DeleteOnClose, false);
    for (const auto* label : sheet.findChildren<QLabel*>()) EXPECT_GE(label->height(), label->heightForWidth(label->width()));
    const auto* button = sheet.findChild<QPushButton*>();
    EXPECT_FALSE(sheet.findChildren<QLabel*>().back()->geometry().intersects(button->geometry()));
    EXPECT_TRUE(sheet.rect().contains(button->geometry()));
}

TEST_F(AlertSheetTest, without_a_window_nothing_is_shown) {
    ui::AlertSheet::present(QStringLiteral("请输入用户名密码!"));
    EXPECT_EQ(shown(), nullptr);
}

TEST_F(AlertSheetTest, goes_with_its_window) {
    auto window = std::make_unique<ui::HDCLBaseWindow>();
    window->orderFront();
    ui::AlertSheet::present(QStringLiteral("请输入用户名密码!"));
    window.reset();
    EXPECT_EQ(shown(), nullptr);
}

}  // namespace
}  // namespace halvane::test
