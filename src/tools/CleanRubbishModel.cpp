#include "tools/CleanRubbishModel.h"

#include "util/SizeText.h"

namespace halvane::tools {

std::vector<CleanRubbishModel> CleanRubbishModel::categories() {
    const auto category = [](const char* icon, const char* title) {
        return CleanRubbishModel{
            .iconName = icon, .titleName = title, .rubbishSize = "0", .rubbishCount = "0", .isSelect = true, .selectEnable = true};
    };
    return {
        category("rubbish_system", "系统垃圾"),
        category("rubbish_broser", "浏览器缓存垃圾"),
        category("rubbish_application", "应用程序垃圾"),
        category("rubbish_resycle", "回收站"),
    };
}

util::StyledText CleanRubbishModel::contentAttString(const std::string& bodyColor, const std::string& grey) const {
    const std::string subTitle = subTitleName();
    util::StyledText content{.text = titleName + "      " + subTitle, .runs = {}};
    content.styleFirst(titleName, {.fontSize = 16, .color = bodyColor});
    content.styleFirst(subTitle, {.fontSize = 13, .color = grey});
    return content;
}

std::string CleanRubbishModel::subTitleName() const {
    if (!selectEnable) return "已清理";
    return "共" + util::SizeText::converStringToSize(rubbishSize) + "垃圾" + rubbishCount + "个文件";
}

}  // namespace halvane::tools
