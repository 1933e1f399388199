#include "tools/CleanRubbishCell.h"
#include "tools/CleanRubbishIntroView.h"
#include "tools/CleanRubbishView.h"

#include "support/ViewTest.h"

namespace halvane::test {
namespace {

using Events = std::vector<std::string>;

class CleanRubbishViewTest : public ViewTest<tools::CleanRubbishView> {
protected:
    CleanRubbishViewTest() { show(view); }

    tools::CleanRubbishCell& cell(std::size_t row) { return dynamic_cast<tools::CleanRubbishCell&>(*table().rows().at(row)); }
    /// What stands for the box of each row.
    Events boxes() {
        Events all;
        for (std::size_t row = 0; row < table().rows().size(); ++row) all.push_back(cell(row).checkImageName().toStdString());
        return all;
    }

    tools::CleanRubbishView view{nullptr};
};

TEST_F(CleanRubbishViewTest, begins_with_four_ticked_categories_and_no_texts) {
    Events rows;
    for (const auto* row : table().rows()) rows.push_back(row->findChild<QLabel*>()->text().toStdString());
    EXPECT_EQ(rows, (Events{"系统垃圾      共0.00KB垃圾0个文件", "浏览器缓存垃圾      共0.00KB垃圾0个文件",
                            "应用程序垃圾      共0.00KB垃圾0个文件", "回收站      共0.00KB垃圾0个文件"}));
    EXPECT_EQ(boxes(), Events(4, "checkbox_pushed"));
    EXPECT_EQ(text("titleLabel") + text("subTitleLabel"), "");
    EXPECT_FALSE(view.isScanning());
}

TEST_F(CleanRubbishViewTest, a_row_toggles_when_the_selection_changes_to_it) {
    clickRow(1);
    EXPECT_EQ(boxes()[1], "checkbox_normal");
    clickRow(1);
    EXPECT_EQ(boxes()[1], "checkbox_normal") << "it is selected already";
    clickRow(2);
    clickRow(1);
    EXPECT_EQ(boxes(), (Events{"checkbox_pushed", "checkbox_pushed", "checkbox_normal", "checkbox_pushed"}));
    press(Qt::Key_Up);
    EXPECT_EQ(boxes()[0], "checkbox_pushed") << "moving is not choosing";
    press(Qt::Key_Space);
    EXPECT_EQ(boxes()[0], "checkbox_normal");
    EXPECT_EQ(cell(0).isChecked(), false);
}

TEST_F(CleanRubbishViewTest, a_cleaned_row_says_so_and_ignores_clicks) {
    view.dataSources()[3].selectEnable = false;
    view.reloadData();
    clickRow(3);
    EXPECT_EQ(boxes()[3], "item_cleaned");
    EXPECT_EQ(table().rows()[3]->findChild<QLabel*>()->text(), QStringLiteral("回收站      已清理"));
}

TEST_F(CleanRubbishViewTest, values_that_were_found_are_shown) {
    view.dataSources()[0].rubbishSize = "1048576";
    view.dataSources()[0].rubbishCount = "12";
    view.reloadData();
    EXPECT_EQ(table().rows()[0]->findChild<QLabel*>()->text(), QStringLiteral("系统垃圾      共1.00MB垃圾12个文件"));
}

TEST_F(CleanRubbishViewTest, hiding_and_showing_keeps_everything) {
    clickRow(2);
    view.startScanAnimattion();
    view.updateTitle(QStringLiteral("xxxMB..."));
    view.hide();
    view.show();
    EXPECT_EQ(boxes()[2], "checkbox_normal");
    EXPECT_TRUE(view.isScanning());
    EXPECT_EQ(text("titleLabel"), "xxxMB...");
    view.startScanAnimattion();
    EXPECT_TRUE(view.isScanning());
    view.stopScanAnimattion();
    EXPECT_FALSE(view.isScanning());
}

TEST_F(CleanRubbishViewTest, buttons_do_nothing_until_somebody_listens) {
    click("scanBtn");
    click("backBtn");
    int scans = 0;
    int backs = 0;
    view.scanBlock = [&scans] { ++scans; };
    view.backBlock = [&backs] { ++backs; };
    click("scanBtn");
    click("backBtn");
    table().takeKeyboard(Qt::TabFocusReason);
    press(Qt::Key_Escape);
    EXPECT_EQ(scans, 1);
    EXPECT_EQ(backs, 2);
}

class CleanRubbishIntroViewTest : public ViewTest<tools::CleanRubbishIntroView> {};

TEST_F(CleanRubbishIntroViewTest, says_what_it_is_for_and_calls_its_owner) {
    tools::CleanRubbishIntroView view(nullptr);
    show(view);
    EXPECT_EQ(text("titleLabel"), "垃圾清理");
    EXPECT_EQ(text("subTitleLabel"), "清理系统空间，让电脑更顺畅");
    click("scanBtn");
    Events calls;
    view.scanBlock = [&calls] { calls.emplace_back("scan"); };
    view.backBlock = [&calls] { calls.emplace_back("back"); };
    view.takeKeyboard(Qt::TabFocusReason);
    press(Qt::Key_Return);
    press(Qt::Key_Tab);
    press(Qt::Key_Space);
    press(Qt::Key_Escape);
    EXPECT_EQ(calls, (Events{"back", "scan", "back"}));
}

}  // namespace
}  // namespace halvane::test
