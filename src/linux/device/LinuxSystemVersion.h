#pragma once

#include "linux/device/SystemFiles.h"
#include "platform/SystemVersion.h"

namespace halvane::linux {

/// os-release, from /etc or, where that one is missing, /usr/lib. "ProductName" is NAME, else "Linux".
/// "ProductVersion" is VERSION_ID; distributions that roll have none and are told by what they do
/// have: BUILD_ID, the code name, VERSION; without any of them the key is missing.
class LinuxSystemVersion final : public platform::SystemVersion {
public:
    explicit LinuxSystemVersion(SystemFiles files) : files_(std::move(files)) {}

    [[nodiscard]] util::Dictionary propertyList() const override;

private:
    const SystemFiles files_;
};

}  // namespace halvane::linux
