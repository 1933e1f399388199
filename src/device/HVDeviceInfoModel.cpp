#include "device/HVDeviceInfoModel.h"

#include "device/HVDeviceInfoHelper.h"

namespace halvane::device {

namespace {

HVDeviceInfoModel::Text field(const util::Dictionary& dictionary, const char* key) { return util::textOf(dictionary.find(key)); }

}  // namespace

using Text = HVDeviceInfoModel::Text;

Text HVDeviceInfoModel::localHostName() const { return helper_.getLocalHostName(); }
Text HVDeviceInfoModel::cpuBaseInfo() const { return helper_.getCPUInfo(); }
Text HVDeviceInfoModel::serialNumber() const { return helper_.getSerialNumber(); }
Text HVDeviceInfoModel::deviceUUID() const { return helper_.getUUID(); }
Text HVDeviceInfoModel::macAddress() const { return helper_.getMacAddress(); }
Text HVDeviceInfoModel::diskUsagePercentage() const { return field(helper_.getDiskInfo(), kDiskUsedPercentage); }
Text HVDeviceInfoModel::memoryUsagePercentage() const { return field(helper_.getMemoryInfo(), kMemoryUsedPercentage); }
Text HVDeviceInfoModel::memoryUsageSize() const { return field(helper_.getMemoryInfo(), kMemoryUsedSize); }
Text HVDeviceInfoModel::diskUsageSize() const { return field(helper_.getDiskInfo(), kDiskUsedSize); }
Text HVDeviceInfoModel::memoryTotleSize() const { return helper_.getMemorySize(); }
Text HVDeviceInfoModel::diskTotleSize() const { return field(helper_.getDiskInfo(), kDiskTotleSize); }

}  // namespace halvane::device
