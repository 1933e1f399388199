#pragma once

#include "util/StyledText.h"

#include <string>
#include <vector>

namespace halvane::tools {

/// One category of the junk cleaner. A plain value.
struct CleanRubbishModel {
    std::string iconName;
    std::string titleName;
    std::string rubbishSize;   ///< bytes, as decimal text
    std::string rubbishCount;  ///< files, as decimal text
    bool isSelect = false;
    bool selectEnable = false;  ///< false: the category has been cleaned

    /// The four categories in the order in which they are shown, ticked and with nothing found yet.
    static std::vector<CleanRubbishModel> categories();

    /// The row's text, title and subtitle, coloured "#RRGGBB".
    [[nodiscard]] util::StyledText contentAttString(const std::string& bodyColor, const std::string& grey) const;
    [[nodiscard]] std::string subTitleName() const;
};

}  // namespace halvane::tools
