#pragma once

#include "linux/device/SystemFiles.h"
#include "systools/Tool.h"

#include <optional>

namespace halvane::systools {

/// The computer's names.
/// HostName       as the kernel has it
/// LocalHostName  its first label, with "-" for what a label of the local network may not hold
/// ComputerName   what its owner called it ("Chen's laptop"), else the host name
class ScutilTool {
public:
    explicit ScutilTool(linux::SystemFiles files) : files_(std::move(files)) {}

    int run(const Arguments& arguments, std::ostream& out, std::ostream& err) const;

private:
    [[nodiscard]] std::optional<std::string> hostName() const;
    [[nodiscard]] std::optional<std::string> localHostName() const;
    [[nodiscard]] std::optional<std::string> computerName() const;

    const linux::SystemFiles files_;
};

}  // namespace halvane::systools
