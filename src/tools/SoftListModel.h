#pragma once

#include <string>

namespace halvane::tools {

/// One application in the software manager's list. A plain value.
struct SoftListModel {
    std::string softIcon;  ///< name of an image
    std::string softName;
    std::string softSize;  ///< as shown, with its unit
};

}  // namespace halvane::tools
