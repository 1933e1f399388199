#pragma once

#include "linux/device/SystemFiles.h"
#include "platform/NetworkInterfaces.h"

#include <vector>

namespace halvane::linux {

/// The interfaces as /sys/class/net lists them. Physical is an Ethernet-like one (Wi-Fi counts) behind
/// which a device of the machine stands: bridges, bonds, tunnels, VLANs and a container's end of a
/// virtual cable have none.
class LinuxNetworkInterfaces final : public platform::NetworkInterfaces {
public:
    explicit LinuxNetworkInterfaces(SystemFiles files) : files_(std::move(files)) {}

    [[nodiscard]] unsigned indexOf(const std::string& name) const override;
    [[nodiscard]] std::optional<std::size_t> addressListLength(unsigned index) const override;
    /// Errors: ENODEV for no such interface, EADDRNOTAVAIL for one whose address is not six bytes, ENOBUFS
    /// for a `length` in which it has no room.
    [[nodiscard]] util::Result<util::Bytes> linkAddress(unsigned index, std::size_t length) const override;

    /// The interface's own name for "en0"; absent when the machine has no physical interface.
    [[nodiscard]] std::optional<std::string> primary() const;

private:
    [[nodiscard]] bool isPhysical(const std::string& name) const;
    [[nodiscard]] unsigned indexIn(const std::string& name) const;
    [[nodiscard]] std::optional<std::string> nameOf(unsigned index) const;

    const SystemFiles files_;
};

}  // namespace halvane::linux
