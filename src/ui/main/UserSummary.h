#pragma once

#include <optional>
#include <string>

namespace halvane::ui {

/// What the main window shows of the signed-in user. Absent: the server did not say.
struct UserSummary {
    std::optional<std::string> nickName;
    std::optional<std::string> departmentName;
    std::optional<std::string> email;
    std::optional<std::string> workAddress;
};

}  // namespace halvane::ui
