#include "linux/device/HostnamedClient.h"

#include "linux/device/BusCalls.h"

#include <systemd/sd-id128.h>

#include <algorithm>
#include <cstdint>

namespace halvane::linux {

namespace {

constexpr const char* kName = "org.freedesktop.hostname1";
constexpr const char* kPath = "/org/freedesktop/hostname1";

}  // namespace

std::optional<std::string> HostnamedClient::hardwareSerial() const {
    BusCalls calls(busAddress_, deadline_);
    const BusMessage call = calls.question(kName, kPath, kName, "GetHardwareSerial");
    const BusMessage answer = calls.ask(call.get());
    const char* serial = nullptr;
    if (!answer || sd_bus_message_read(answer.get(), "s", &serial) <= 0) return std::nullopt;
    return std::string(serial);
}

std::optional<std::string> HostnamedClient::productUuid() const {
    BusCalls calls(busAddress_, deadline_);
    const BusMessage call = calls.question(kName, kPath, kName, "GetProductUUID");
    // "false": not interactive, no password dialog may come up for this.
    if (!call || sd_bus_message_append(call.get(), "b", 0) < 0) return std::nullopt;
    const BusMessage answer = calls.ask(call.get());
    const void* bytes = nullptr;
    std::size_t size = 0;
    sd_id128_t id{};
    if (!answer || sd_bus_message_read_array(answer.get(), 'y', &bytes, &size) <= 0 || size != sizeof id.bytes) return std::nullopt;
    std::copy_n(static_cast<const std::uint8_t*>(bytes), size, id.bytes);
    char text[SD_ID128_UUID_STRING_MAX];
    return std::string(sd_id128_to_uuid_string(id, text));
}

}  // namespace halvane::linux
