#include "tools/UnInstallAlertView.h"

#include "support/FakeDevice.h"
#include "support/ScriptedClient.h"
#include "support/ViewTest.h"
#include "tools/UninstallAuthorisation.h"
#include "ui/widgets/FilledButton.h"

#include <QAccessible>
#include <QClipboard>
#include <QLineEdit>
#include <memory>

namespace halvane::test {
namespace {

using Events = std::vector<std::string>;

/// The reminder over a window with a control beneath it.
class UnInstallAlertViewTest : public ViewTest<QWidget> {
protected:
    UnInstallAlertViewTest() {
        company.user.user_loginSuccessWithDic(
            util::Dictionary{{"job_number", "0417"}, {"token", "t"}, {"user_name", "chen.xiao@example.com"}});
        beneath->setObjectName(QStringLiteral("beneath"));
        show(window, {960, 640});
        beneath->setFocus();
        alert->showOnView(&window);
    }

    QLineEdit& field() { return control<QLineEdit>("vertifyTF"); }
    void type(const char* characters) { QTest::keyClicks(&field(), QString::fromUtf8(characters)); }
    const std::string& urlOf(std::size_t index) { return company.transport.exchanges.at(index)->request.url; }
    void answer(const std::string& reply) {
        company.mainLoop->runPending();
        company.transport.replyJson(company.transport.exchanges.size() - 1, reply);
        company.mainLoop->runPending();
    }
    std::size_t requests() {
        company.mainLoop->runPending();
        return company.transport.exchanges.size();
    }
    QColor tipColor() { return control<QLabel>("tipLabel").palette().color(QPalette::WindowText); }

    ScriptedClient company;
    FakeDevice device;
    QWidget window;
    QLineEdit* beneath = new QLineEdit(&window);
    std::unique_ptr<tools::UnInstallAlertView> alert = std::make_unique<tools::UnInstallAlertView>(
        std::make_unique<tools::UninstallAuthorisation>(tools::UninstallAuthorisation::Collaborators{
            *company.mainLoop, company.mainLoop, company.user, company.requests, device.helper}));
};

TEST_F(UnInstallAlertViewTest, covers_the_window_and_asks_for_the_code) {
    EXPECT_TRUE(alert->isShow());
    EXPECT_EQ(alert->geometry(), QRect(0, 0, 960, 640));
    EXPECT_EQ(focused(), "vertifyTF");
    EXPECT_EQ(text("titleLabel"), "卸载提醒");
    EXPECT_EQ(field().placeholderText(), QStringLiteral("请输入6位安全码"));
    EXPECT_EQ(text("tipLabel"), "");
    Events titles;
    for (const char* name : {"closeBtn", "applyVertifyCodeBtn", "cancelBtn", "uninstallBtn"})
        titles.push_back(control<QPushButton>(name).text().toStdString());
    EXPECT_EQ(titles, (Events{"✕", "申请安全码", "取消", "卸载"}));
}

TEST_F(UnInstallAlertViewTest, code_ends_with_its_sixth_character_however_it_comes) {
    type("1234567");
    EXPECT_EQ(field().text(), QStringLiteral("123456"));
    field().clear();
    QApplication::clipboard()->setText(QStringLiteral("abcdefghij"));
    QTest::keyClick(&field(), Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(field().text(), QStringLiteral("abcdef")) << "letters are as good as digits";
    QTest::keyClick(&field(), Qt::Key_Home);
    type("Z");
    EXPECT_EQ(field().text(), QStringLiteral("Zabcde"));
    EXPECT_EQ(field().cursorPosition(), 1);
    field().setText(QStringLiteral("🙂🙂🙂🙂🙂🙂🙂"));
    EXPECT_EQ(field().text(), QStringLiteral("🙂🙂🙂🙂🙂🙂")) << "no character is cut in two";
    field().setText(QStringLiteral("123456"));
    EXPECT_EQ(field().text().size(), 6);
}

TEST_F(UnInstallAlertViewTest, both_buttons_and_escape_close_and_what_was_there_stays) {
    type("48");
    click("uninstallBtn");
    answer(R"({"code":402,"msg":"安全码不正确"})");
    const std::function<void()> ways[] = {[this] { click("closeBtn"); }, [this] { click("cancelBtn"); }, [] { press(Qt::Key_Escape); }};
    for (const auto& close : ways) {
        close();
        EXPECT_FALSE(alert->isShow());
        EXPECT_FALSE(alert->isVisible());
        EXPECT_EQ(focused(), "beneath");
        alert->showOnView(&window);
        EXPECT_EQ(field().text(), QStringLiteral("48"));
        EXPECT_EQ(text("tipLabel"), "安全码不正确");
    }
    EXPECT_EQ(requests(), 1u);
}

TEST_F(UnInstallAlertViewTest, keyboard_stays_inside) {
    Events way;
    for (int stop = 0; stop < 6; ++stop) {
        way.push_back(focused());
        press(Qt::Key_Tab);
    }
    EXPECT_EQ(way, (Events{"vertifyTF", "applyVertifyCodeBtn", "cancelBtn", "uninstallBtn", "closeBtn", "vertifyTF"}));
    QTest::mouseClick(alert.get(), Qt::LeftButton, {}, {5, 5});
    EXPECT_TRUE(alert->isShow()) << "a click beside it is no answer";
    EXPECT_NE(focused(), "beneath");
}

TEST_F(UnInstallAlertViewTest, every_press_sends_one_request) {
    click("applyVertifyCodeBtn");
    click("applyVertifyCodeBtn");
    EXPECT_EQ(requests(), 2u);
    type("123456");
    press(Qt::Key_Return);
    EXPECT_EQ(requests(), 3u);
    QKeyEvent held(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QStringLiteral("\r"), true);
    QCoreApplication::sendEvent(&field(), &held);
    EXPECT_EQ(requests(), 3u) << "a key that is held is one press";
    EXPECT_EQ(urlOf(0), "http://company.test/api/client/user/equipment/uninstall_apply");
    EXPECT_EQ(urlOf(2), "http://company.test/api/client/user/equipment/uninstall_sure");
}

TEST_F(UnInstallAlertViewTest, tip_tells_how_it_went) {
    click("uninstallBtn");
    EXPECT_EQ(text("tipLabel"), "请输入卸载码");
    EXPECT_EQ(tipColor(), QColor(ui::HDCLUICenter::colorErr));
    EXPECT_EQ(requests(), 0u);

    click("applyVertifyCodeBtn");
    answer(R"({"code":"200"})");
    EXPECT_EQ(text("tipLabel"), "安全码已发送至您的工作手机或邮箱");
    EXPECT_EQ(tipColor(), QColor(ui::HDCLUICenter::colorOk));

    click("applyVertifyCodeBtn");
    answer(R"({"code":500,"msg":"busy"})");
    EXPECT_EQ(text("tipLabel"), "安全码已发送至您的工作手机或邮箱") << "a refused code leaves the tip";

    type("1");
    click("uninstallBtn");
    answer(R"({"code":403})");
    EXPECT_EQ(text("tipLabel"), "(null)");
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&field())->text(QAccessible::Description), QStringLiteral("(null)"));

    click("uninstallBtn");
    requests();
    company.transport.fail(company.transport.exchanges.size() - 1, util::UrlError::TimedOut);
    company.mainLoop->runPending();
    EXPECT_EQ(text("tipLabel"), "(null)") << "a failed request says nothing";
    EXPECT_TRUE(alert->isShow());
}

TEST_F(UnInstallAlertViewTest, verified_code_closes_it_also_when_it_was_closed_meanwhile) {
    type("123456");
    click("uninstallBtn");
    answer(R"({"code":200})");
    EXPECT_FALSE(alert->isShow());
    alert->showOnView(&window);
    EXPECT_EQ(text("tipLabel"), "卸载成功");
    click("uninstallBtn");
    press(Qt::Key_Escape);
    answer(R"({"code":401,"msg":"用完了"})");
    EXPECT_FALSE(alert->isShow());
    alert->showOnView(&window);
    EXPECT_EQ(text("tipLabel"), "用完了");
}

TEST_F(UnInstallAlertViewTest, may_go_while_a_request_is_under_way) {
    click("applyVertifyCodeBtn");
    requests();
    alert.reset();
    company.transport.replyJson(0, R"({"code":200})");
    company.mainLoop->runPending();
    EXPECT_EQ(window.findChild<QWidget*>(QStringLiteral("tipLabel")), nullptr);
}

}  // namespace
}  // namespace halvane::test
