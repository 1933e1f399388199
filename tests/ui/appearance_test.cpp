#include "support/AccessibilityCheck.h"
#include "support/LayoutCheck.h"
#include "support/MainStory.h"
#include "ui/main/MainRightOperationView.h"
#include "ui/main/SetViewController.h"
#include "ui/widgets/PageView.h"

#include <gtest/gtest.h>
#include <QPushButton>
#include <QTest>

namespace halvane::test {
namespace {

using Events = std::vector<std::string>;

/// Every state of the main window and every window beside it, brought up one after the other.
class AppearanceTest : public testing::Test {
protected:
    struct Scene {
        const char* name;
        std::function<QWidget&()> show;
    };

    void open() {
        window = story.makeMainWindow();
        window->makeKeyAndOrderFront();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }
    ui::MainLeftMenuView& menu() { return window->mainView().leftMenuView(); }
    QWidget& page(int index) {
        menu().selectMenuIndex(index);
        return *window->mainView().rightOperationView().shownPage();
    }
    QWidget& tool(int index, bool scan = false) {
        QWidget& functions = page(4);
        for (auto* button : functions.findChildren<QPushButton*>(QStringLiteral("backBtn")))
            if (button->isVisible()) button->click();
        MainStory::control<QWidget>(functions, "gridView").findChildren<QPushButton*>().at(index)->click();
        for (int time = 0; scan && time < 2; ++time) clickScan(functions);
        return functions;
    }

    static void clickScan(const QWidget& functions) {
        for (auto* button : functions.findChildren<QPushButton*>(QStringLiteral("scanBtn")))
            if (button->isVisible()) return button->click();
    }

    std::vector<Scene> scenes() {
        return {
            {"menu", [this]() -> QWidget& { return menu(); }},
            {"security", [this]() -> QWidget& { return page(0); }},
            {"device", [this]() -> QWidget& { return page(1); }},
            {"network", [this]() -> QWidget& { return page(2); }},
            {"services", [this]() -> QWidget& { return page(3); }},
            {"functions", [this]() -> QWidget& { return page(4); }},
            {"cleaner introduction", [this]() -> QWidget& { return tool(0); }},
            {"cleaner", [this]() -> QWidget& { return tool(0, true); }},
            {"remote", [this]() -> QWidget& { return tool(1); }},
            {"software", [this]() -> QWidget& { return tool(2); }},
            {"pop-over",
             [this]() -> QWidget& {
                 menu().showSetMenu();
                 return *menu().popver();
             }},
            {"uninstall reminder",
             [this]() -> QWidget& {
                 window->mainView().showUninstallAlert();
                 return MainStory::control<QWidget>(window->mainView(), "uninstallAlertView");
             }},
            {"about",
             [this]() -> QWidget& {
                 menu().aboutUs();
                 return story.panels.versionPanel();
             }},
            {"settings",
             [this]() -> QWidget& {
                 menu().systemSet();
                 return story.panels.systemSetWindow();
             }},
        };
    }

    MainStory story;
    std::unique_ptr<ui::MainWindow> window;
};

TEST_F(AppearanceTest, every_control_has_a_name_of_its_own_for_screen_readers) {
    story.workplaces.saveWorkAddressInfoWithData(
        util::Value::List{util::Dictionary{{"name", "松岭"}, {"value", "SL"}}, util::Dictionary{{"name", "成都"}, {"value", "CD"}}});
    open();
    for (const auto& scene : scenes()) {
        const AccessibilityCheck found(scene.show());
        EXPECT_EQ(found.unnamed(), Events{}) << scene.name;
        // Ten sample applications are called the same.
        if (scene.name != std::string("software")) {
            EXPECT_EQ(found.ambiguous(), Events{}) << scene.name;
        }
    }
}

TEST_F(AppearanceTest, screen_readers_find_what_eyes_find) {
    open();
    EXPECT_EQ(AccessibilityCheck(menu()).controls(),
              (Events{"button: 陈晓", "picture: 头像", "list: 页面", "row: 安全", "row: 设备", "row: 网络", "row: 服务", "row: 功能"}));
    EXPECT_EQ(AccessibilityCheck(page(0)).controls(),
              (Events{"picture: 安全软件检测：不符合要求", "button: 修复：安全软件检测", "picture: 域控安全检测：不符合要求",
                      "button: 修复：域控安全检测", "picture: 个人身份验证：不符合要求", "button: 修复：个人身份验证", "button: 待修复"}));
    EXPECT_EQ(AccessibilityCheck(tool(0, true)).controls(),
              (Events{"button: 返回", "picture: 正在扫描", "button: 开始扫描", "list: 垃圾类别", "check box: 系统垃圾 共0.00KB垃圾0个文件",
                      "check box: 浏览器缓存垃圾 共0.00KB垃圾0个文件", "check box: 应用程序垃圾 共0.00KB垃圾0个文件",
                      "check box: 回收站 共0.00KB垃圾0个文件"}));
}

TEST_F(AppearanceTest, nothing_overlaps_or_is_cut_whatever_the_size) {
    open();
    for (const QSize size : {QSize(960, 640), QSize(1280, 720), QSize(1920, 1056), QSize(3840, 2100)}) {
        window->resize(size);
        for (const auto& scene : scenes())
            EXPECT_EQ(LayoutCheck::problemsOf(scene.show()), Events{}) << scene.name << " at " << size.width();
    }
}

TEST_F(AppearanceTest, longer_texts_and_names_are_elided_with_the_whole_in_a_tool_tip) {
    story.signIn({{"nick_name", std::string(60, 'N')}, {"department_name", std::string(200, 'D')}, {"email", std::string(120, 'e')}});
    util::Value::List list;
    for (int i = 0; i < 40; ++i) list.push_back(util::Dictionary{{"name", std::string(80, 'W')}, {"value", i}});
    story.workplaces.saveWorkAddressInfoWithData(list);
    open();
    for (const auto& scene : scenes()) {
        QWidget& shown = scene.show();
        LayoutCheck::lengthenTexts(shown);
        EXPECT_EQ(LayoutCheck::problemsOf(shown), Events{}) << scene.name;
        for (auto* widget : shown.findChildren<QWidget*>()) {
            const auto* label = dynamic_cast<ui::ElidedLabel*>(widget);
            if (!label || label->shownText() == label->text()) continue;
            EXPECT_EQ(label->toolTip(), label->text()) << scene.name;
        }
    }
}

}  // namespace
}  // namespace halvane::test
