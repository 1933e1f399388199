#include "tools/CleanRubbishModel.h"

#include <gtest/gtest.h>

namespace halvane::tools {
namespace {

std::string styledPart(const util::StyledText& text, std::size_t run) {
    return text.text.substr(text.runs[run].offset, text.runs[run].length);
}

TEST(CleanRubbish, begins_with_four_ticked_categories_in_which_nothing_was_found) {
    const std::pair<const char*, const char*> rows[] = {{"rubbish_system", "系统垃圾"},
                                                        {"rubbish_broser", "浏览器缓存垃圾"},
                                                        {"rubbish_application", "应用程序垃圾"},
                                                        {"rubbish_resycle", "回收站"}};
    const auto categories = CleanRubbishModel::categories();
    ASSERT_EQ(categories.size(), std::size(rows));
    for (std::size_t i = 0; i < categories.size(); ++i) {
        SCOPED_TRACE(rows[i].second);
        EXPECT_EQ(categories[i].iconName, rows[i].first);
        EXPECT_TRUE(categories[i].isSelect);
        EXPECT_TRUE(categories[i].selectEnable);
        EXPECT_EQ(categories[i].contentAttString("", "").text, std::string(rows[i].second) + "      共0.00KB垃圾0个文件");
    }
}

TEST(CleanRubbish, the_line_follows_what_was_found_and_ends_with_the_cleaning) {
    auto model = CleanRubbishModel::categories().front();
    model.rubbishSize = "1073741824";
    model.rubbishCount = "1024";
    EXPECT_EQ(model.subTitleName(), "共1.00GB垃圾1024个文件");
    model.isSelect = false;
    EXPECT_EQ(model.subTitleName(), "共1.00GB垃圾1024个文件");
    model.selectEnable = false;
    EXPECT_EQ(model.contentAttString("", "").text, "系统垃圾      已清理");
}

TEST(CleanRubbish, title_and_line_have_a_look_each) {
    const auto text = CleanRubbishModel::categories().back().contentAttString("#1B1F24", "#565D68");
    ASSERT_EQ(text.runs.size(), 2U);
    EXPECT_EQ(styledPart(text, 0), "回收站");
    EXPECT_EQ(text.runs[0].style, (util::StyledText::Style{.fontSize = 16, .color = "#1B1F24"}));
    EXPECT_EQ(styledPart(text, 1), "共0.00KB垃圾0个文件");
    EXPECT_EQ(text.runs[1].style, (util::StyledText::Style{.fontSize = 13, .color = "#565D68"}));
}

}  // namespace
}  // namespace halvane::tools
