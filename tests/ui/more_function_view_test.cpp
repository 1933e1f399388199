#include "ui/main/MoreFunctionView.h"

#include "support/MainStory.h"
#include "tools/CleanRubbishIntroView.h"
#include "tools/CleanRubbishView.h"
#include "tools/RemoteAssistanceView.h"
#include "tools/SoftUnInstallView.h"

#include <gtest/gtest.h>
#include <QLabel>
#include <QPushButton>
#include <QTest>

namespace halvane::test {
namespace {

using Events = std::vector<std::string>;

class MoreFunctionViewTest : public testing::Test {
protected:
    MoreFunctionViewTest() {
        page.resize(746, 614);
        page.show();
        page.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&page));
    }

    QList<QPushButton*> items() { return story.control<QWidget>(page, "gridView").findChildren<QPushButton*>(); }
    void clickItem(int index) { QTest::mouseClick(items().at(index), Qt::LeftButton); }
    template <typename Panel>
    Panel& panel() {
        for (auto* child : page.findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
            if (auto* found = dynamic_cast<Panel*>(child)) return *found;
        throw std::logic_error("no such panel");
    }
    void clickIn(const QWidget& shown, const char* title) {
        for (auto* button : shown.findChildren<QPushButton*>()) {
            if (button->text() != QString::fromUtf8(title)) continue;
            return QTest::mouseClick(button, Qt::LeftButton);
        }
        FAIL() << "no button " << title;
    }
    std::string shown() {
        std::string all;
        if (panel<tools::CleanRubbishIntroView>().isVisible()) all += "intro ";
        if (panel<tools::CleanRubbishView>().isVisible()) all += "cleaner ";
        if (panel<tools::RemoteAssistanceView>().isVisible()) all += "remote ";
        if (panel<tools::SoftUnInstallView>().isVisible()) all += "software ";
        if (story.control<QWidget>(page, "gridView").isVisible()) all += "grid ";
        return all;
    }
    void press(Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); }

    MainStory story;
    ui::MoreFunctionView page{story.log};
};

TEST_F(MoreFunctionViewTest, offers_three_tools_in_order) {
    Events titles;
    for (const auto* item : items()) titles.push_back(item->text().toStdString());
    EXPECT_EQ(titles, (Events{"清理垃圾", "远程协助", "软件管理"}));
    EXPECT_EQ(story.control<QLabel>(page, "titleLabel").text(), QStringLiteral("功能大全"));
    EXPECT_EQ(shown(), "grid ");
}

TEST_F(MoreFunctionViewTest, each_tool_covers_the_page_until_the_way_back) {
    const struct {
        int item;
        std::string panel;
    } rows[] = {{0, "intro "}, {1, "remote "}, {2, "software "}};
    for (const auto& row : rows) {
        clickItem(row.item);
        EXPECT_EQ(shown(), row.panel);
        for (auto* child : page.findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
            if (child->isVisible()) clickIn(*child, "返回");
        EXPECT_EQ(shown(), "grid ");
    }
    EXPECT_EQ(story.log.lines(), (Events{"didClickItemAtIndex: 0", "didClickItemAtIndex: 1", "didClickItemAtIndex: 2"}));
}

TEST_F(MoreFunctionViewTest, cleaner_goes_from_its_introduction_to_a_scan_that_stays) {
    clickItem(0);
    clickIn(panel<tools::CleanRubbishIntroView>(), "开始扫描");
    EXPECT_EQ(shown(), "cleaner ");
    auto& cleaner = panel<tools::CleanRubbishView>();
    const auto texts = [&cleaner] {
        std::string all;
        for (const char* name : {"titleLabel", "subTitleLabel"})
            all += MainStory::control<QLabel>(cleaner, name).text().toStdString() + "|";
        return all;
    };
    EXPECT_EQ(texts(), "||");
    for (int time = 0; time < 2; ++time) {
        clickIn(cleaner, "开始扫描");
        EXPECT_EQ(texts(), "xxxMB...|正在扫描：xxx/xxx/xxx|");
        EXPECT_TRUE(cleaner.isScanning());
    }
    clickIn(cleaner, "返回");
    EXPECT_EQ(shown(), "grid ");
    clickItem(0);
    clickIn(panel<tools::CleanRubbishIntroView>(), "开始扫描");
    EXPECT_EQ(texts(), "xxxMB...|正在扫描：xxx/xxx/xxx|") << "hiding and showing resets nothing";
}

TEST_F(MoreFunctionViewTest, keyboard_goes_into_a_panel_and_back_to_its_item) {
    items().at(0)->setFocus(Qt::TabFocusReason);
    press(Qt::Key_Right);
    press(Qt::Key_Right);
    press(Qt::Key_Right);
    EXPECT_EQ(QApplication::focusWidget(), items().at(2));
    press(Qt::Key_Return);
    EXPECT_EQ(shown(), "software ");
    EXPECT_TRUE(panel<tools::SoftUnInstallView>().isAncestorOf(QApplication::focusWidget()));
    press(Qt::Key_Escape);
    EXPECT_EQ(shown(), "grid ");
    EXPECT_EQ(QApplication::focusWidget(), items().at(2));
    press(Qt::Key_Left);
    press(Qt::Key_Left);
    press(Qt::Key_Space);
    clickIn(panel<tools::CleanRubbishIntroView>(), "开始扫描");
    press(Qt::Key_Escape);
    EXPECT_EQ(QApplication::focusWidget(), items().at(0)) << "by way of the introduction too";
}

}  // namespace
}  // namespace halvane::test
