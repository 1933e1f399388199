#include "login/LoginView.h"

#include "login/RecordingActions.h"

#include <gtest/gtest.h>
#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <functional>

namespace halvane::login {
namespace {

using Field = LoginScreen::Field;
using Events = std::vector<std::string>;

/// The view in a window of its own, as a person meets it.
class LoginViewTest : public testing::Test {
protected:
    LoginViewTest() {
        view = std::make_unique<LoginView>([this](LoginScreen& screen) { return std::make_unique<RecordingActions>(screen, events); },
                                           [this] {
                                               auto made = std::make_unique<ui::HDCLBaseWindow>();
                                               made->setContentSize({960, 640});
                                               mainWindows.emplace_back(made.get());
                                               return made;
                                           });
        window.setContentView(view.get());
        window.setContentSize({330, 400});
        window.makeKeyAndOrderFront();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    template <typename T = QWidget>
    T& control(const char* name) {
        auto* found = view->findChild<T*>(QLatin1String(name));
        if (!found) throw std::logic_error(std::string("no control ") + name);
        return *found;
    }
    /// Presses on whatever has the keyboard.
    static void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) { QTest::keyClick(QApplication::focusWidget(), key, modifiers); }
    static std::string focused() {
        return QApplication::focusWidget() ? QApplication::focusWidget()->objectName().toStdString() : "nothing";
    }
    static void type(const char* text) { QTest::keyClicks(QApplication::focusWidget(), QString::fromUtf8(text)); }

    Events events;
    std::vector<QPointer<ui::HDCLBaseWindow>> mainWindows;
    ui::HDCLBaseWindow window;
    std::unique_ptr<LoginView> view;
};

TEST_F(LoginViewTest, is_built_before_it_is_in_a_window_and_gone_before_its_controls) {
    EXPECT_EQ(events, (Events{"built", "in window"}));
    view->setText(Field::UserName, "chen@example.com");
    view.reset();
    EXPECT_EQ(events.back(), "gone, chen@example.com");
}

TEST_F(LoginViewTest, name_is_typed_in_front_of_the_prefilled_suffix_and_enter_signs_in) {
    EXPECT_EQ(focused(), "userNameTF");
    type("chen.xiao");
    press(Qt::Key_Return);
    press(Qt::Key_Tab);
    type("geheim");
    press(Qt::Key_Enter);
    EXPECT_EQ(view->text(Field::PassWord), "geheim");
    EXPECT_EQ(events, (Events{"built", "in window", "login chen.xiao@example.com", "login chen.xiao@example.com"}));
}

TEST_F(LoginViewTest, tab_goes_through_the_controls_and_back) {
    const Events order{"userNameTF", "passWordTF", "loginBtn", "autoLogin", "forgetPW"};
    for (const auto& name : order) {
        EXPECT_EQ(focused(), name);
        press(Qt::Key_Tab);
    }
    EXPECT_EQ(focused(), "userNameTF");
    for (std::size_t i = order.size(); i-- > 0;) {
        press(Qt::Key_Backtab, Qt::ShiftModifier);
        EXPECT_EQ(focused(), order[i]);
    }
}

TEST_F(LoginViewTest, each_control_can_be_worked_by_keyboard_alone) {
    events.clear();
    press(Qt::Key_Tab);
    press(Qt::Key_Tab);
    press(Qt::Key_Space);
    press(Qt::Key_Return);
    press(Qt::Key_Tab);
    press(Qt::Key_Space);
    press(Qt::Key_Tab);
    press(Qt::Key_Return);
    EXPECT_EQ(events, (Events{"login @example.com", "login @example.com", "automatic on", "forgotten"}));
}

TEST_F(LoginViewTest, busy_look_still_takes_every_click) {
    auto& button = control<QPushButton>("loginBtn");
    events.clear();
    view->setLook(LoginScreen::Look::LoggingIn);
    EXPECT_EQ(button.text(), QStringLiteral("正在登录..."));
    QTest::mouseClick(&button, Qt::LeftButton);
    QTest::mouseDClick(&button, Qt::LeftButton);  // the second press of a double click
    QTest::mouseRelease(&button, Qt::LeftButton);
    control<QLineEdit>("passWordTF").setFocus();
    press(Qt::Key_Return);
    EXPECT_EQ(events.size(), 3u);
    view->setLook(LoginScreen::Look::LogIn);
    EXPECT_EQ(button.text(), QStringLiteral("登录"));
}

TEST_F(LoginViewTest, only_the_person_counts_as_typing) {
    EXPECT_FALSE(view->isTyped(Field::UserName));
    type("c");
    EXPECT_TRUE(view->isTyped(Field::UserName));
    EXPECT_FALSE(view->isTyped(Field::PassWord));
    view->setText(Field::UserName, "li@example.com");
    EXPECT_FALSE(view->isTyped(Field::UserName));
    press(Qt::Key_Backspace);
    EXPECT_TRUE(view->isTyped(Field::UserName)) << "erasing is typing too";
    EXPECT_EQ(view->text(Field::UserName), "li@example.co");
}

TEST_F(LoginViewTest, only_the_person_counts_as_toggling) {
    events.clear();
    view->setAutoLoginState(true);
    view->setAutoLoginState(false);
    EXPECT_TRUE(events.empty());
    EXPECT_FALSE(view->isAutoLoginToggled());
    QTest::mouseClick(&control("autoLogin"), Qt::LeftButton);
    EXPECT_EQ(events, Events{"automatic on"});
    EXPECT_TRUE(view->isAutoLoginToggled());
    // An assistive tool toggles without a click.
    auto* accessible = QAccessible::queryAccessibleInterface(&control("autoLogin"));
    accessible->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_EQ(events.back(), "automatic off");
}

TEST_F(LoginViewTest, texts_travel_unchanged) {
    for (const char* text : {"", "陈晓@example.com", " a b ", "p\"w\\d%&", "🙂"}) {
        for (const auto field : {Field::UserName, Field::PassWord}) {
            view->setText(field, text);
            EXPECT_EQ(view->text(field), text);
        }
    }
    EXPECT_EQ(control<QLineEdit>("passWordTF").displayText().indexOf(QStringLiteral("🙂")), -1);
}

TEST_F(LoginViewTest, tip_is_repeated_in_its_tool_tip_and_for_screen_readers) {
    const auto described = [this](const char* name) {
        return QAccessible::queryAccessibleInterface(&control(name))->text(QAccessible::Description).toStdString();
    };
    const auto& tip = control<QLabel>("tipLabel");
    for (const std::string text : {"登陆出错", "用户名或密码不正确，请检查后重新输入；连续输错五次后账号将被锁定三十分钟", ""}) {
        view->setTip(text);
        EXPECT_EQ(tip.text().toStdString(), text);
        EXPECT_EQ(QAccessible::queryAccessibleInterface(&control("tipLabel"))->text(QAccessible::Name).toStdString(), text);
        for (const char* name : {"userNameTF", "passWordTF", "loginBtn"}) {
            // A field without a description of its own is described by its placeholder.
            if (text.empty()) {
                EXPECT_FALSE(described(name).starts_with("用户名或密码")) << name;
            } else {
                EXPECT_EQ(described(name), text) << name;
            }
        }
        EXPECT_EQ(tip.toolTip().toStdString(), text.size() > 100 ? text : "");
    }
}

TEST_F(LoginViewTest, every_control_has_a_name_for_screen_readers) {
    std::vector<std::string> named;
    const std::function<void(QAccessibleInterface*)> walk = [&](QAccessibleInterface* item) {
        const auto role = item->role();
        if (role == QAccessible::EditableText || role == QAccessible::Button || role == QAccessible::CheckBox) {
            const auto name = item->text(QAccessible::Name);
            EXPECT_FALSE(name.isEmpty()) << item->object()->objectName().toStdString();
            named.push_back(item->object()->objectName().toStdString() + " " + name.toStdString());
        }
        for (int i = 0; i < item->childCount(); ++i) walk(item->child(i));
    };
    walk(QAccessible::queryAccessibleInterface(&window));
    std::ranges::sort(named);
    EXPECT_EQ(named, (Events{"autoLogin 自动登录", "forgetPW 忘记密码", "loginBtn 登录", "passWordTF 密码", "userNameTF 用户名"}));
    EXPECT_TRUE(QAccessible::queryAccessibleInterface(&control("passWordTF"))->state().passwordEdit);
}

TEST_F(LoginViewTest, nothing_is_cut_off_and_nothing_overlaps) {
    const auto controls = view->findChildren<QWidget*>(Qt::FindDirectChildrenOnly);
    for (const QWidget* one : controls) {
        EXPECT_TRUE(view->rect().contains(one->geometry())) << one->objectName().toStdString();
        EXPECT_GE(one->width(), one->sizeHint().width()) << one->objectName().toStdString();
    }
    // Where people click; the free margins for the focus ring may touch.
    EXPECT_FALSE(control("autoLogin").geometry().intersects(control("forgetPW").geometry()));
    EXPECT_FALSE(control("userNameTF").geometry().intersects(control("passWordTF").geometry()));
}

TEST_F(LoginViewTest, each_login_gets_a_new_main_window_and_the_old_one_goes_later) {
    view->showMainWindow();
    ASSERT_EQ(mainWindows.size(), 1u);
    EXPECT_EQ(view->MainW(), mainWindows[0]);
    EXPECT_TRUE(QTest::qWaitForWindowActive(mainWindows[0]));
    view->showMainWindow();
    ASSERT_EQ(mainWindows.size(), 2u);
    EXPECT_FALSE(mainWindows[0].isNull()) << "it may be in the middle of an event";
    EXPECT_EQ(view->MainW(), mainWindows[1]);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(mainWindows[0].isNull());
    view.reset();
    EXPECT_TRUE(mainWindows[1].isNull());
}

TEST_F(LoginViewTest, main_window_refuses_to_close_and_others_do_not) {
    view->showMainWindow();
    EXPECT_FALSE(view->MainW()->close());
    EXPECT_TRUE(view->MainW()->isVisible());
    ui::HDCLBaseWindow other;
    other.setDelegate(view.get());
    other.orderFront();
    EXPECT_TRUE(other.close());
}

TEST_F(LoginViewTest, main_window_may_zoom_only_to_where_its_content_fits) {
    view->showMainWindow();
    EXPECT_FALSE(view->windowShouldZoom(*view->MainW(), {959, 800}));
    EXPECT_TRUE(view->windowShouldZoom(*view->MainW(), {960, 640}));
}

TEST_F(LoginViewTest, alert_leaves_the_program_running_behind_it) {
    view->showAlertWithMsg("请输入用户名密码!");
    auto* sheet = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    ASSERT_NE(sheet, nullptr);
    EXPECT_EQ(sheet->parentWidget(), &window);
    view->setTip("登陆出错");
    QTest::keyClick(sheet, Qt::Key_Return);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

}  // namespace
}  // namespace halvane::login
