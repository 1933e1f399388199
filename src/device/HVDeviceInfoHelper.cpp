#include "device/HVDeviceInfoHelper.h"

#include "platform/DeviceRegistry.h"
#include "platform/NetworkInterfaces.h"
#include "platform/ProcessLauncher.h"
#include "platform/SystemControl.h"
#include "platform/SystemCounters.h"
#include "platform/SystemVersion.h"
#include "util/Log.h"
#include "util/Text.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdint>
#include <utility>

namespace halvane::device {

namespace {

constexpr const char* kScutil = "/usr/sbin/scutil";
constexpr const char* kSysctl = "/usr/sbin/sysctl";
constexpr const char* kSystemProfiler = "/usr/sbin/system_profiler";
constexpr const char* kSecurity = "/usr/bin/security";
constexpr const char* kProfiles = "/usr/bin/profiles";
constexpr const char* kNetworksetup = "/usr/sbin/networksetup";
constexpr const char* kPrimaryInterface = "en0";
constexpr const char* kCertPasswordVariable = "HALVANE_CERT_PASSWORD";

std::optional<std::string> withoutLineFeeds(const std::optional<std::string>& text) {
    return text ? std::optional(util::withoutLineFeeds(*text)) : std::nullopt;
}

/// GiB of a count of blocks, which are taken for 4 KiB whatever the file system's are.
std::string gibibytesOfBlocks(std::uint64_t blocks) { return fmt::format("{:02}", blocks >> 18); }

std::string gibibytes(float bytes) { return fmt::format("{:.2f}", bytes * 0x1p-30F); }

}  // namespace

HVDeviceInfoHelper::HVDeviceInfoHelper(Collaborators collaborators) : collaborators_(std::move(collaborators)) {}

std::optional<std::string> HVDeviceInfoHelper::systemVersionValue(std::string_view key) const {
    const util::Dictionary list = collaborators_.version.propertyList();
    return withoutLineFeeds(util::textOf(list.find(key)));
}

std::optional<std::string> HVDeviceInfoHelper::getSystemProductName() const { return systemVersionValue("ProductName"); }

std::optional<std::string> HVDeviceInfoHelper::getSystemVersion() const { return systemVersionValue("ProductVersion"); }

std::string HVDeviceInfoHelper::getModelIdentifier() const {
    return collaborators_.control.valueByName("hw.model").value_or("Unknown Mac");
}

std::optional<std::string> HVDeviceInfoHelper::getLocalHostName() const {
    return runCommandWithLaunchPath(kScutil, {"--get", "LocalHostName"});
}

std::optional<std::string> HVDeviceInfoHelper::getSerialNumber() const { return getIOPlatformInfoWithKey("IOPlatformSerialNumber"); }

std::optional<std::string> HVDeviceInfoHelper::getUUID() const { return getIOPlatformInfoWithKey("IOPlatformUUID"); }

std::optional<std::string> HVDeviceInfoHelper::getIOPlatformInfoWithKey(const std::string& key) const {
    const auto property = collaborators_.registry.property("IOPlatformExpertDevice", key);
    if (!property) return std::nullopt;
    const std::string* bytes = property->text() != nullptr ? property->text() : property->data();
    if (bytes == nullptr) return std::nullopt;
    std::string text = bytes->substr(0, bytes->find('\0'));
    // A text goes through a buffer of 256 bytes, its NUL included; a longer one does not fit and is none.
    constexpr std::size_t kTextLimit = 255;
    if ((property->text() != nullptr && text.size() > kTextLimit) || !util::isValidUtf8(text)) return std::nullopt;
    return text;
}

std::optional<std::string> HVDeviceInfoHelper::getMacAddress() const {
    const auto& interfaces = collaborators_.interfaces;
    const unsigned index = interfaces.indexOf(kPrimaryInterface);
    if (index == 0) {
        collaborators_.print("Error: if_nametoindex error/n");
        return std::nullopt;
    }
    const auto length = interfaces.addressListLength(index);
    if (!length) {
        collaborators_.print("Error: sysctl, take 1/n");
        return std::nullopt;
    }
    const auto address = interfaces.linkAddress(index, *length);
    if (!address || address->size() != 6) {
        const bool noMemory = !address && address.error().code == ENOMEM;
        collaborators_.print(noMemory ? "Could not allocate memory. error!/n" : "Error: sysctl, take 2");
        return std::nullopt;
    }
    std::string text;
    for (const char byte : *address) text += fmt::format("{}{:02X}", text.empty() ? "" : ":", static_cast<std::uint8_t>(byte));
    return text;
}

std::optional<std::string> HVDeviceInfoHelper::getCPUInfo() const {
    return withoutLineFeeds(runCommandWithLaunchPath(kSysctl, {"-n", "machdep.cpu.brand_string"}));
}

std::string HVDeviceInfoHelper::getMemorySize() const {
    const util::Value output(runCommandWithLaunchPath(kSysctl, {"-n", "hw.memsize"}).value_or(""));
    return fmt::format("{}GB", util::integerOf(&output) / 1073741824);
}

util::Dictionary HVDeviceInfoHelper::getMemoryInfo() const {
    const auto pageSize = collaborators_.counters.pageSize();
    if (!pageSize) return {};
    const auto pages = collaborators_.counters.memory();
    if (!pages) return {};

    const auto page = static_cast<float>(*pageSize);
    const float total = static_cast<float>(pages->inactive + pages->active + pages->speculative + pages->wired + pages->compressor) * page;
    const float cached = static_cast<float>(pages->external + pages->purgeable) * page;
    const float used = total - cached;
    // The free pages are added as a bare count: the page has always been shown so, and support compares.
    const float free = static_cast<float>(pages->free) + total - used;
    const double whole = static_cast<double>(used) + static_cast<double>(free);
    if (whole == 0) return {};
    return {{kMemoryUsedPercentage, fmt::format("{:.2f}%", static_cast<double>(used) / whole * 100)},
            {kMemoryUsedSize, gibibytes(used)},
            {kMemoryFreeSize, gibibytes(free)},
            {kMemoryTotleSize, gibibytes(total)}};
}

std::optional<std::string> HVDeviceInfoHelper::getStorageSize() const {
    const auto output = runCommandWithLaunchPath(kSystemProfiler, {"SPStorageDataType", "|", "grep", "'Capacity'"});
    const auto pieces = util::split(output.value_or(""), ':');
    if (pieces.size() < 2) return std::nullopt;
    return util::replaced(util::withoutLineFeeds(pieces[1]), " ", "");
}

util::Dictionary HVDeviceInfoHelper::getDiskInfo() const {
    const auto blocks = collaborators_.counters.fileSystem("/");
    if (!blocks || blocks->freeBlocks > blocks->blocks) return {};
    const std::uint64_t used = blocks->blocks - blocks->freeBlocks;
    const std::uint64_t reachable = used + blocks->availableBlocks;
    if (reachable == 0) return {};
    return {{kDiskUsedPercentage, fmt::format("{}%", used * 100 / reachable + 1)},
            {kDiskUsedSize, gibibytesOfBlocks(used)},
            {kDiskFreeSize, gibibytesOfBlocks(blocks->availableBlocks)},
            {kDiskTotleSize, gibibytesOfBlocks(blocks->blocks)}};
}

util::StyledText HVDeviceInfoHelper::getSPHardwareInfo() const {
    const auto hostName = getLocalHostName();
    const std::string system = fmt::format("{}  {}", util::printed(getSystemProductName()), util::printed(getSystemVersion()));
    const auto processor = getCPUInfo();
    const std::string memory = getMemorySize();
    const util::Dictionary disk = getDiskInfo();
    const auto serialNumber = getSerialNumber();
    util::StyledText summary;
    summary.text =
        fmt::format("{}\n{}\n处理器：{}\n内存：{}\n硬盘：{}GB\n序列号：{}GB", util::printed(hostName), system, util::printed(processor),
                    memory, util::printed(util::textOf(disk.find(kDiskTotleSize))), util::printed(serialNumber));
    summary.styleFirst(util::printed(hostName), {.fontName = "Helvetica-Bold", .fontSize = 19});
    summary.styleFirst(system, {.fontName = "Helvetica-Bold", .fontSize = 13, .lineSpacing = 6});
    return summary;
}

std::optional<std::string> HVDeviceInfoHelper::runCommandWithLaunchPath(const std::string& path,
                                                                        const std::vector<std::string>& arguments) const {
    return outputOf({.launchPath = path, .arguments = arguments});
}

std::optional<std::string> HVDeviceInfoHelper::outputOf(const platform::ProcessRequest& request) const {
    const auto output = collaborators_.launcher.readOutput(request);
    if (!output) {
        collaborators_.log.write(output.error().description);
        return "";
    }
    return util::isValidUtf8(*output) ? std::optional(*output) : std::nullopt;
}

std::optional<std::string> HVDeviceInfoHelper::findCert() const { return runCommandWithLaunchPath(kSecurity, {"find-identity"}); }

std::optional<std::string> HVDeviceInfoHelper::installCertWithPath(const std::string& path, const std::string& certPassword) const {
    // Argument lists are open to every user of the computer, a child's environment to this user only.
    auto output = outputOf({.launchPath = kSecurity,
                            .arguments = {"import", path, "-k", "login.keychain", "-P", std::string("env:") + kCertPasswordVariable},
                            .environment = {{kCertPasswordVariable, certPassword}}});
    collaborators_.log.write("installCertResult:" + util::printed(output));
    return output;
}

std::optional<std::string> HVDeviceInfoHelper::delCertWithName(const std::string& name) const {
    return runCommandWithLaunchPath(kSecurity, {"delete-certificate", "-c", name});
}

std::optional<std::string> HVDeviceInfoHelper::removeMobileConfigWithIdentifier(const std::string& identifier) const {
    return runCommandWithLaunchPath(kProfiles, {"remove", "-identifier", identifier});
}

void HVDeviceInfoHelper::switchToNewWifiName(const std::string& networkName) const {
    (void)runCommandWithLaunchPath(kNetworksetup, {"-setairportnetwork", kPrimaryInterface, networkName});
}

std::optional<std::string> HVDeviceInfoHelper::openNetworkService(const std::string& service) const {
    return runCommandWithLaunchPath(kNetworksetup, {"-setnetworkserviceenabled", service, "on"});
}

std::optional<std::string> HVDeviceInfoHelper::closeNetworkService(const std::string& service) const {
    return runCommandWithLaunchPath(kNetworksetup, {"-setnetworkserviceenabled", service, "off"});
}

}  // namespace halvane::device
