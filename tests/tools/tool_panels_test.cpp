#include "tools/NetWorkView.h"
#include "tools/RemoteAssistanceView.h"
#include "tools/SecurityCheckView.h"
#include "tools/SoftListCell.h"
#include "tools/SoftUnInstallView.h"

#include "support/ViewTest.h"

#include <QLineEdit>
#include <QPointer>

namespace halvane::test {
namespace {

using Events = std::vector<std::string>;

class SoftUnInstallViewTest : public ViewTest<tools::SoftUnInstallView> {
protected:
    SoftUnInstallViewTest() { show(view); }

    /// Each row as "name size".
    Events rows() {
        Events all;
        for (const auto* row : table().rows()) {
            const auto part = [row](const char* name) { return row->findChild<QLabel*>(QLatin1String(name))->text().toStdString(); };
            all.push_back(part("nameLabel") + " " + part("sizeLabel"));
        }
        return all;
    }

    tools::SoftUnInstallView view{nullptr};
};

TEST_F(SoftUnInstallViewTest, lists_ten_samples_whatever_is_pressed) {
    const Events ten(10, "xxAPP xxMB");
    EXPECT_EQ(text("titleLabel"), "软件管理");
    EXPECT_EQ(rows(), ten);
    table().rows()[4]->findChild<QPushButton*>(QStringLiteral("uninstallBtn"))->click();
    clickRow(2);
    EXPECT_EQ(rows(), ten);
    view.hide();
    view.show();
    EXPECT_EQ(rows(), ten) << "they are filled once";
    const QPointer<QWidget> old = table().rows()[0];
    click("refreshBtn");
    EXPECT_EQ(rows(), ten);
    EXPECT_NE(table().rows()[0], old) << "a refresh makes its rows anew";
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(old.isNull());
}

TEST_F(SoftUnInstallViewTest, every_button_of_the_list_is_reached_by_keyboard_and_in_sight) {
    view.takeKeyboard(Qt::TabFocusReason);
    press(Qt::Key_Tab);
    EXPECT_EQ(focused(), "refreshBtn");
    press(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), table().rows()[0]);
    for (int row = 0; row < 10; ++row) press(Qt::Key_Tab);
    auto* last = table().rows()[9]->findChild<QPushButton*>();
    EXPECT_EQ(QApplication::focusWidget(), last);
    EXPECT_TRUE(table().viewport()->rect().contains(last->mapTo(table().viewport(), last->rect().center())));
}

TEST(SoftListCellTest, hands_its_model_to_who_listens) {
    tools::SoftListCell cell;
    cell.setModel({.softIcon = "rubbish_broser", .softName = "Editor", .softSize = "12MB"});
    auto* button = cell.findChild<QPushButton*>();
    button->click();
    Events removed;
    cell.uninstallBlock = [&removed](const tools::SoftListModel& model) { removed.push_back(model.softName); };
    button->click();
    EXPECT_EQ(removed, Events{"Editor"});
    EXPECT_EQ(button->text(), QStringLiteral("卸载"));
}

class RemoteAssistanceViewTest : public ViewTest<tools::RemoteAssistanceView> {
protected:
    RemoteAssistanceViewTest() { show(view); }

    tools::RemoteAssistanceView view{nullptr};
};

TEST_F(RemoteAssistanceViewTest, shows_placeholders_and_takes_any_text) {
    EXPECT_EQ(text("titleLabel"), "远程协助");
    EXPECT_EQ(text("localCodeLabel"), "XXX XXX XXX");
    EXPECT_EQ(text("localPWLabel"), "XXXXXX");
    EXPECT_EQ(control<QLineEdit>("romateCodeTF").placeholderText(), QStringLiteral("输入识别码，远程伙伴"));
    EXPECT_EQ(control<QLineEdit>("remotePWTF").placeholderText(), QStringLiteral("选填"));
    Events captions;
    for (const auto* label : view.findChildren<QLabel*>())
        if (label->objectName().isEmpty()) captions.push_back(label->text().toStdString());
    EXPECT_EQ(captions, (Events{"允许控制本机", "本机识别码", "本机验证码", "控制远程设备", "伙伴识别码", "验证码"}));
    const QString typed = QString(300, u'9') + QStringLiteral(" äß🙂");
    control<QLineEdit>("romateCodeTF").setText(typed);
    view.hide();
    view.show();
    EXPECT_EQ(control<QLineEdit>("romateCodeTF").text(), typed);
}

TEST_F(RemoteAssistanceViewTest, connecting_tells_only_who_listens) {
    view.takeKeyboard(Qt::TabFocusReason);
    Events way;
    for (int stop = 0; stop < 4; ++stop) {
        way.push_back(focused());
        press(Qt::Key_Tab);
    }
    EXPECT_EQ(way, (Events{"backBtn", "romateCodeTF", "remotePWTF", "remoteBtn"}));
    click("remoteBtn");
    int calls = 0;
    view.remoteBlock = [&calls] { ++calls; };
    click("remoteBtn");
    EXPECT_EQ(calls, 1);
}

class SecurityCheckViewTest : public ViewTest<tools::SecurityCheckView> {
protected:
    SecurityCheckViewTest() { show(view); }

    tools::SecurityCheckView view;
};

TEST_F(SecurityCheckViewTest, always_counts_three_and_shows_the_count_in_orange) {
    for (const char* count : {"", "0", "12"}) {
        view.setFixCount(count);
        view.updateTitle();
        EXPECT_EQ(view.fixCount(), "3");
        EXPECT_EQ(text("titleLabel"), "您的电脑有3项不符合公司要求，请立即修复");
    }
    const QImage title = control("titleLabel").grab().toImage();
    int orange = 0;
    for (int x = 0; x < title.width(); ++x)
        for (int y = 0; y < title.height(); ++y) orange += title.pixelColor(x, y) == QColor(ui::HDCLUICenter::colorThemeOrange) ? 1 : 0;
    EXPECT_GT(orange, 5);
    EXPECT_LT(orange, 200) << "only the count";
}

TEST_F(SecurityCheckViewTest, names_three_requirements_whose_buttons_change_nothing) {
    const struct {
        std::string name;
        const char* title;
        const char* subTitle;
    } rows[] = {{"softState", "安全软件检测", "检测电脑是否按要求安装360天擎"},
                {"netState", "域控安全检测", "检测电脑是否加入域环境"},
                {"persionState", "个人身份验证", "检测登陆账户是否与电脑解锁账户一致"}};
    const QImage before = picture();
    int top = 0;
    for (const auto& row : rows) {
        EXPECT_EQ(text((row.name + "Title").c_str()), row.title);
        EXPECT_EQ(text((row.name + "SubTitle").c_str()), row.subTitle);
        auto& button = control<QPushButton>((row.name + "Btn").c_str());
        EXPECT_EQ(button.text(), QStringLiteral("修复"));
        EXPECT_GT(button.y(), std::exchange(top, button.y()));
        button.click();
    }
    EXPECT_EQ(control<QPushButton>("fixBtn").text(), QStringLiteral("待修复"));
    control<QPushButton>("fixBtn").click();
    EXPECT_EQ(picture(), before);
}

class NetWorkViewTest : public ViewTest<tools::NetWorkView> {};

TEST_F(NetWorkViewTest, state_stays_empty_whatever_is_pressed) {
    tools::NetWorkView view;
    show(view);
    const QImage before = picture();
    EXPECT_EQ(control<QPushButton>("connectBtn").text(), QStringLiteral("连接VPN"));
    control<QPushButton>("connectBtn").click();
    EXPECT_EQ(text("connectStateLabel"), "连接状态：");
    EXPECT_EQ(picture(), before);
    const auto bottomOf = [this](const char* name) { return control(name).geometry().bottom() + 1; };
    EXPECT_EQ(bottomOf("headerIconView"), control("centerIconView").y()) << "the pictures are one";
    EXPECT_EQ(bottomOf("centerIconView"), control("bottomIconView").y());
}

}  // namespace
}  // namespace halvane::test
