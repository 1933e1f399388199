#include "linux/device/LinuxNetworkInterfaces.h"

#include "linux/device/DefaultRoutes.h"
#include "util/Text.h"

#include <algorithm>
#include <cerrno>
#include <limits>

namespace halvane::linux {

namespace {

constexpr const char* kInterfaces = "sys/class/net";
constexpr unsigned kEthernet = 1;  // ARPHRD_ETHER; Wi-Fi has it too, radio monitors and raw modems have not
constexpr std::size_t kAddressBytes = 6;

std::string inDirectory(const std::string& name, const char* file) { return std::string(kInterfaces) + "/" + name + "/" + file; }

/// Six pairs of hexadecimal digits; absent for anything else.
std::optional<util::Bytes> addressBytes(const std::string& text) {
    util::Bytes address;
    for (const auto& pair : util::split(text, ':')) {
        const auto byte = wholeNumber(pair, 16);
        if (!byte || pair.size() != 2) return std::nullopt;
        address.push_back(static_cast<char>(*byte));
    }
    return address.size() == kAddressBytes ? std::optional(address) : std::nullopt;
}

}  // namespace

unsigned LinuxNetworkInterfaces::indexOf(const std::string& name) const {
    if (name == "en0") {
        const auto interface = primary();
        return interface ? indexIn(*interface) : 0;
    }
    // Not by putting the name into a path: it may hold "/".
    const auto names = files_.names(kInterfaces);
    return std::ranges::find(names, name) == names.end() ? 0 : indexIn(name);
}

std::optional<std::size_t> LinuxNetworkInterfaces::addressListLength(unsigned index) const {
    const auto name = nameOf(index);
    const auto length = name ? files_.number(inDirectory(*name, "addr_len")) : std::nullopt;
    return length ? std::optional<std::size_t>(*length) : std::nullopt;
}

util::Result<util::Bytes> LinuxNetworkInterfaces::linkAddress(unsigned index, std::size_t length) const {
    const std::string subject = "read the address of interface " + std::to_string(index);
    const auto name = nameOf(index);
    if (!name) return util::fileError(ENODEV, subject);
    if (length < kAddressBytes) return util::fileError(ENOBUFS, subject);
    // A member of a bond wears the bond's address; its own is the one that identifies it.
    auto text = files_.line(inDirectory(*name, "bonding_slave/perm_hwaddr"));
    if (!text) text = files_.line(inDirectory(*name, "address"));
    const auto address = text ? addressBytes(*text) : std::nullopt;
    if (!address) return util::fileError(EADDRNOTAVAIL, subject);
    return *address;
}

std::optional<std::string> LinuxNetworkInterfaces::primary() const {
    std::vector<std::string> physical;
    for (const auto& name : files_.names(kInterfaces)) {
        if (isPhysical(name)) physical.push_back(name);
    }
    if (physical.empty()) return std::nullopt;
    for (const auto& route : defaultRoutes(files_)) {
        if (std::ranges::find(physical, route.interface) != physical.end()) return route.interface;
    }
    // First as the kernel found them, which is the same at every start, while names may be given by the user.
    return *std::ranges::min_element(physical, {}, [this](const std::string& name) { return indexIn(name); });
}

bool LinuxNetworkInterfaces::isPhysical(const std::string& name) const {
    return files_.exists(inDirectory(name, "device")) && files_.number(inDirectory(name, "type")) == kEthernet && indexIn(name) != 0;
}

unsigned LinuxNetworkInterfaces::indexIn(const std::string& name) const {
    const auto index = files_.number(inDirectory(name, "ifindex"));
    return index && *index <= std::numeric_limits<unsigned>::max() ? static_cast<unsigned>(*index) : 0;
}

std::optional<std::string> LinuxNetworkInterfaces::nameOf(unsigned index) const {
    if (index == 0) return std::nullopt;
    for (const auto& name : files_.names(kInterfaces)) {
        if (indexIn(name) == index) return name;
    }
    return std::nullopt;
}

}  // namespace halvane::linux
