#pragma once

#include "linux/device/HostnamedClient.h"
#include "linux/device/SystemFiles.h"
#include "platform/DeviceRegistry.h"

namespace halvane::linux {

/// Serial number and UUID of this machine: as the firmware tells us, else as systemd-hostnamed tells
/// us, else as the package wrote them down, as root, when it was installed. A filler text of the
/// maker's ("To Be Filled By O.E.M.") counts as unreadable at each of the three. Nothing is cached.
class LinuxDeviceRegistry final : public platform::DeviceRegistry {
public:
    /// `recorded`: directory, below the root of `files`, of the files "machine-serial" and "machine-uuid".
    LinuxDeviceRegistry(SystemFiles files, HostnamedClient hostnamed, std::string recorded = "var/lib/halvane")
        : files_(std::move(files)), hostnamed_(std::move(hostnamed)), recorded_(std::move(recorded)) {}

    /// Text for class "IOPlatformExpertDevice" and "IOPlatformSerialNumber" or "IOPlatformUUID" (upper case).
    [[nodiscard]] std::optional<util::Value> property(const std::string& serviceClass, const std::string& key) const override;

private:
    [[nodiscard]] std::optional<std::string> serialNumber() const;
    [[nodiscard]] std::optional<std::string> uuid() const;

    const SystemFiles files_;
    const HostnamedClient hostnamed_;
    const std::string recorded_;
};

}  // namespace halvane::linux
