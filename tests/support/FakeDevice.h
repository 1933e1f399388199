#pragma once

#include "device/HVDeviceInfoHelper.h"
#include "platform/DeviceRegistry.h"
#include "platform/NetworkInterfaces.h"
#include "platform/SystemControl.h"
#include "platform/SystemCounters.h"
#include "platform/SystemVersion.h"
#include "support/RecordingLog.h"
#include "support/ScriptedLauncher.h"

#include <cerrno>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace halvane::test {

/// A computer whose facts the test decides, and the collector that reads them.
class FakeDevice final : public platform::DeviceRegistry,
                         public platform::SystemControl,
                         public platform::SystemVersion,
                         public platform::SystemCounters,
                         public platform::NetworkInterfaces {
public:
    std::optional<util::Value> property(const std::string& serviceClass, const std::string& key) const override {
        const auto* value = serviceClass == "IOPlatformExpertDevice" ? properties.find(key) : nullptr;
        return value == nullptr ? std::nullopt : std::optional(*value);
    }
    std::optional<std::string> valueByName(const std::string& name) const override {
        const auto found = controls.find(name);
        return found == controls.end() ? std::nullopt : std::optional(found->second);
    }
    util::Dictionary propertyList() const override { return systemVersion; }
    std::optional<std::uint64_t> pageSize() const override { return pageBytes; }
    std::optional<platform::MemoryCounters> memory() const override {
        ++memoryReadings;
        return memoryPages;
    }
    std::optional<platform::FileSystemCounters> fileSystem(const std::string& path) const override {
        ++diskReadings;
        return path == "/" ? disk : std::nullopt;
    }
    std::optional<std::uint32_t> processorCount() const override { return processorNumber; }
    std::optional<std::vector<platform::ProcessorCounters>> processors() const override { return processorTicks; }
    unsigned indexOf(const std::string& name) const override { return name == "en0" ? interfaceIndex : 0; }
    std::optional<std::size_t> addressListLength(unsigned /*index*/) const override { return listLength; }
    util::Result<util::Bytes> linkAddress(unsigned /*index*/, std::size_t /*length*/) const override { return address; }

    util::Dictionary properties{{"IOPlatformSerialNumber", "HV-0001"}};
    std::map<std::string, std::string> controls;
    util::Dictionary systemVersion{{"ProductName", "Debian GNU/Linux"}, {"ProductVersion", "12"}};
    std::optional<std::uint64_t> pageBytes = 4096;
    std::optional<platform::MemoryCounters> memoryPages = platform::MemoryCounters{};
    std::optional<platform::FileSystemCounters> disk = platform::FileSystemCounters{};
    std::optional<std::uint32_t> processorNumber = 1;
    std::optional<std::vector<platform::ProcessorCounters>> processorTicks = std::vector<platform::ProcessorCounters>{{}};
    mutable int diskReadings = 0;
    mutable int memoryReadings = 0;
    unsigned interfaceIndex = 2;
    std::optional<std::size_t> listLength = 100;
    util::Result<util::Bytes> address = util::Bytes("\xA4\x83\xE7\x01\x0B\x2C", 6);
    ScriptedLauncher launcher;
    RecordingLog log;
    std::string printed;
    device::HVDeviceInfoHelper helper{
        {launcher, *this, *this, *this, *this, *this, log, [this](std::string_view text) { printed += text; }}};
};

}  // namespace halvane::test
