#include "linux/device/LinuxDeviceRegistry.h"

#include "linux/device/MachineIdentity.h"

namespace halvane::linux {

std::optional<util::Value> LinuxDeviceRegistry::property(const std::string& serviceClass, const std::string& key) const {
    if (serviceClass != "IOPlatformExpertDevice") return std::nullopt;
    std::optional<std::string> text;
    if (key == "IOPlatformSerialNumber") text = serialNumber();
    if (key == "IOPlatformUUID") text = uuid();
    return text ? std::optional<util::Value>(std::move(*text)) : std::nullopt;
}

std::optional<std::string> LinuxDeviceRegistry::serialNumber() const {
    if (auto serial = filledIn(files_.line("sys/class/dmi/id/product_serial"))) return serial;
    // Boards without DMI have a device tree instead, and anybody may read it.
    if (auto serial = filledIn(files_.line("proc/device-tree/serial-number"))) return serial;
    if (auto serial = filledIn(hostnamed_.hardwareSerial())) return serial;
    return filledIn(files_.line(recorded_ + "/machine-serial"));
}

std::optional<std::string> LinuxDeviceRegistry::uuid() const {
    if (auto uuid = filledInUuid(files_.line("sys/class/dmi/id/product_uuid"))) return uuid;
    if (auto uuid = filledInUuid(hostnamed_.productUuid())) return uuid;
    return filledInUuid(files_.line(recorded_ + "/machine-uuid"));
}

}  // namespace halvane::linux
