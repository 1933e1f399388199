#pragma once

#include <optional>
#include <string>

namespace halvane::device {

class HVDeviceInfoHelper;

/// The computer's facts as a record. Reading asks the system each time, with the exception of the
/// processor's usage, which the sampler stores; storing is possible for every field, and what is stored
/// in the others is never read. Any one thread.
class HVDeviceInfoModel {
public:
    using Text = std::optional<std::string>;

    explicit HVDeviceInfoModel(const HVDeviceInfoHelper& helper) : helper_(helper) {}

    [[nodiscard]] Text localHostName() const;
    [[nodiscard]] Text cpuBaseInfo() const;
    [[nodiscard]] Text serialNumber() const;
    [[nodiscard]] Text deviceUUID() const;
    [[nodiscard]] Text macAddress() const;
    [[nodiscard]] Text cpuUsagePercentage() const { return stored_.cpuUsagePercentage; }  ///< such as "12.34"
    [[nodiscard]] Text diskUsagePercentage() const;
    [[nodiscard]] Text memoryUsagePercentage() const;
    [[nodiscard]] Text memoryUsageSize() const;
    [[nodiscard]] Text diskUsageSize() const;
    [[nodiscard]] Text memoryTotleSize() const;
    [[nodiscard]] Text diskTotleSize() const;

    void setLocalHostName(Text value) { stored_.localHostName = std::move(value); }
    void setCpuBaseInfo(Text value) { stored_.cpuBaseInfo = std::move(value); }
    void setSerialNumber(Text value) { stored_.serialNumber = std::move(value); }
    void setDeviceUUID(Text value) { stored_.deviceUUID = std::move(value); }
    void setMacAddress(Text value) { stored_.macAddress = std::move(value); }
    void setCpuUsagePercentage(Text value) { stored_.cpuUsagePercentage = std::move(value); }
    void setDiskUsagePercentage(Text value) { stored_.diskUsagePercentage = std::move(value); }
    void setMemoryUsagePercentage(Text value) { stored_.memoryUsagePercentage = std::move(value); }
    void setMemoryUsageSize(Text value) { stored_.memoryUsageSize = std::move(value); }
    void setDiskUsageSize(Text value) { stored_.diskUsageSize = std::move(value); }
    void setMemoryTotleSize(Text value) { stored_.memoryTotleSize = std::move(value); }
    void setDiskTotleSize(Text value) { stored_.diskTotleSize = std::move(value); }

private:
    struct Stored {
        Text localHostName, cpuBaseInfo, serialNumber, deviceUUID, macAddress, cpuUsagePercentage;
        Text diskUsagePercentage, memoryUsagePercentage, memoryUsageSize, diskUsageSize, memoryTotleSize, diskTotleSize;
    };

    const HVDeviceInfoHelper& helper_;
    Stored stored_;
};

}  // namespace halvane::device
