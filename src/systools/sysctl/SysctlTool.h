#pragma once

#include "platform/SystemControl.h"
#include "systools/Tool.h"

namespace halvane::systools {

/// Prints named values of the system. `control` must outlive it.
class SysctlTool {
public:
    /// `names`: all that `control` knows, for -a.
    SysctlTool(const platform::SystemControl& control, std::vector<std::string> names) : control_(control), names_(std::move(names)) {}

    int run(const Arguments& arguments, std::ostream& out, std::ostream& err) const;

private:
    const platform::SystemControl& control_;
    const std::vector<std::string> names_;
};

}  // namespace halvane::systools
