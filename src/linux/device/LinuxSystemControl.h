#pragma once

#include "linux/device/SystemFiles.h"
#include "platform/SystemControl.h"

#include <vector>

namespace halvane::linux {

/// Named values, each from where this system keeps it:
/// hw.model             DMI product name, else product version, else the device tree's model
/// hw.memsize           bytes of memory built in: the blocks that are switched on, which unlike
///                      MemTotal count what the kernel keeps for itself; MemTotal where there are no blocks
/// hw.ncpu              processors switched on
/// hw.pagesize, hw.machine, kern.hostname, kern.osrelease, kern.ostype, machdep.cpu.brand_string
class LinuxSystemControl final : public platform::SystemControl {
public:
    explicit LinuxSystemControl(SystemFiles files) : files_(std::move(files)) {}

    [[nodiscard]] std::optional<std::string> valueByName(const std::string& name) const override;
    /// All names known here, sorted.
    static std::vector<std::string> names();

private:
    [[nodiscard]] std::optional<std::string> model() const;
    [[nodiscard]] std::optional<std::string> memorySize() const;
    [[nodiscard]] std::optional<std::string> processorCount() const;
    [[nodiscard]] std::optional<std::string> processorBrand() const;

    const SystemFiles files_;
};

}  // namespace halvane::linux
