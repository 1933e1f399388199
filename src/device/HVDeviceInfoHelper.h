#pragma once

#include "util/StyledText.h"
#include "util/Value.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace halvane::platform {
class DeviceRegistry;
class NetworkInterfaces;
class ProcessLauncher;
struct ProcessRequest;
class SystemControl;
class SystemCounters;
class SystemVersion;
}  // namespace halvane::platform
namespace halvane::util {
class Log;
}

namespace halvane::device {

/// Keys of the memory and disk dictionaries; all values are text.
inline constexpr const char* kMemoryUsedPercentage = "Key_MemoryUsedPercentage";  ///< such as "63.12%"
inline constexpr const char* kMemoryUsedSize = "Key_MemoryUsedSize";              ///< GiB, two decimals
inline constexpr const char* kMemoryFreeSize = "Key_MemoryFreeSize";
inline constexpr const char* kMemoryTotleSize = "Key_MemoryTotleSize";
inline constexpr const char* kDiskUsedPercentage = "Key_DiskUsedPercentage";  ///< such as "47%"
inline constexpr const char* kDiskUsedSize = "Key_DiskUsedSize";              ///< whole GiB, at least two digits
inline constexpr const char* kDiskFreeSize = "Key_DiskFreeSize";
inline constexpr const char* kDiskTotleSize = "Key_DiskTotleSize";

/// Facts about this computer, and the certificate, profile and network operations that run the
/// system's command-line tools. Nothing is cached: each call asks the system. Synchronous on the
/// caller's thread; those that run a tool block until it closes its output. Any thread. Nothing is an
/// error: what cannot be learnt is absent or an empty dictionary.
class HVDeviceInfoHelper {
public:
    struct Collaborators {
        platform::ProcessLauncher& launcher;
        const platform::DeviceRegistry& registry;
        const platform::SystemControl& control;
        const platform::SystemVersion& version;
        const platform::SystemCounters& counters;
        const platform::NetworkInterfaces& interfaces;
        util::Log& log;
        std::function<void(std::string_view)> print;  ///< standard output
    };

    explicit HVDeviceInfoHelper(Collaborators collaborators);

    [[nodiscard]] std::optional<std::string> getSystemProductName() const;
    [[nodiscard]] std::optional<std::string> getSystemVersion() const;
    [[nodiscard]] std::string getModelIdentifier() const;
    /// With the line feed that ends it.
    [[nodiscard]] std::optional<std::string> getLocalHostName() const;
    [[nodiscard]] std::optional<std::string> getSerialNumber() const;
    [[nodiscard]] std::optional<std::string> getUUID() const;
    [[nodiscard]] std::optional<std::string> getIOPlatformInfoWithKey(const std::string& key) const;
    /// Of "en0": six upper-case pairs joined by colons. Failures are printed on standard output.
    [[nodiscard]] std::optional<std::string> getMacAddress() const;
    [[nodiscard]] std::optional<std::string> getCPUInfo() const;
    /// Whole GiB, cut off: "8GB" for 8.5 GiB.
    [[nodiscard]] std::string getMemorySize() const;
    [[nodiscard]] util::Dictionary getMemoryInfo() const;
    /// Absent when the tool's output names no capacity.
    [[nodiscard]] std::optional<std::string> getStorageSize() const;
    [[nodiscard]] util::Dictionary getDiskInfo() const;
    [[nodiscard]] util::StyledText getSPHardwareInfo() const;

    /// Standard output as text; absent when it is not valid UTF-8, empty when the tool cannot be started
    /// (which is logged). The exit status is not looked at.
    [[nodiscard]] std::optional<std::string> runCommandWithLaunchPath(const std::string& path,
                                                                      const std::vector<std::string>& arguments) const;

    /// The listing of installed identities, to be searched as text.
    [[nodiscard]] std::optional<std::string> findCert() const;
    std::optional<std::string> installCertWithPath(const std::string& path, const std::string& certPassword) const;
    std::optional<std::string> delCertWithName(const std::string& name) const;
    std::optional<std::string> removeMobileConfigWithIdentifier(const std::string& identifier) const;

    /// Joins a network on "en0"; its credentials come from an installed profile.
    void switchToNewWifiName(const std::string& networkName) const;
    std::optional<std::string> openNetworkService(const std::string& service) const;
    std::optional<std::string> closeNetworkService(const std::string& service) const;

private:
    [[nodiscard]] std::optional<std::string> outputOf(const platform::ProcessRequest& request) const;
    [[nodiscard]] std::optional<std::string> systemVersionValue(std::string_view key) const;

    Collaborators collaborators_;
};

}  // namespace halvane::device
