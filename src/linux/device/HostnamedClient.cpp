#include "linux/device/HostnamedClient.h"

#include <systemd/sd-bus.h>
#include <systemd/sd-id128.h>

#include <algorithm>
#include <cerrno>
#include <memory>

namespace halvane::linux {

namespace {

using Clock = std::chrono::steady_clock;

struct CloseBus {
    // Without flushing: that would wait for a bus that does not read.
    void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
};
struct UnrefMessage {
    void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
using Bus = std::unique_ptr<sd_bus, CloseBus>;
using Message = std::unique_ptr<sd_bus_message, UnrefMessage>;

struct Reply {
    bool arrived = false;
    Message message;
};

int onReply(sd_bus_message* message, void* userData, sd_bus_error*) {
    auto& reply = *static_cast<Reply*>(userData);
    reply.arrived = true;
    if (sd_bus_message_is_method_error(message, nullptr) == 0) reply.message.reset(sd_bus_message_ref(message));
    return 0;
}

Bus connect(const std::string& address) {
    sd_bus* raw = nullptr;
    if (address.empty()) return sd_bus_open_system(&raw) < 0 ? Bus() : Bus(raw);
    if (sd_bus_new(&raw) < 0) return {};
    Bus bus(raw);
    if (sd_bus_set_address(raw, address.c_str()) < 0 || sd_bus_set_bus_client(raw, 1) < 0 || sd_bus_start(raw) < 0) return {};
    return bus;
}

/// The blocking call of the library starts its clock only when the bus has let us in; a bus that
/// accepts and then says nothing would hold us for its own, much longer, time.
Message ask(sd_bus* bus, sd_bus_message* question, Clock::time_point end) {
    Reply reply;
    if (sd_bus_call_async(bus, nullptr, question, onReply, &reply, 0) < 0) return {};
    while (!reply.arrived) {
        const int worked = sd_bus_process(bus, nullptr);
        if (worked < 0) return {};
        if (worked > 0) continue;
        const auto left = std::chrono::duration_cast<std::chrono::microseconds>(end - Clock::now());
        if (left.count() <= 0) return {};
        const int waited = sd_bus_wait(bus, static_cast<std::uint64_t>(left.count()));
        if (waited < 0 && waited != -EINTR) return {};
    }
    return std::move(reply.message);
}

Message question(sd_bus* bus, const char* method) {
    sd_bus_message* raw = nullptr;
    if (sd_bus_message_new_method_call(bus, &raw, "org.freedesktop.hostname1", "/org/freedesktop/hostname1", "org.freedesktop.hostname1",
                                       method) < 0)
        return {};
    return Message(raw);
}

}  // namespace

std::optional<std::string> HostnamedClient::hardwareSerial() const {
    const auto end = Clock::now() + deadline_;
    const Bus bus = connect(busAddress_);
    if (!bus) return std::nullopt;
    const Message call = question(bus.get(), "GetHardwareSerial");
    if (!call) return std::nullopt;
    const Message answer = ask(bus.get(), call.get(), end);
    const char* serial = nullptr;
    if (!answer || sd_bus_message_read(answer.get(), "s", &serial) <= 0) return std::nullopt;
    return std::string(serial);
}

std::optional<std::string> HostnamedClient::productUuid() const {
    const auto end = Clock::now() + deadline_;
    const Bus bus = connect(busAddress_);
    if (!bus) return std::nullopt;
    const Message call = question(bus.get(), "GetProductUUID");
    // "false": not interactive, no password dialog may come up for this.
    if (!call || sd_bus_message_append(call.get(), "b", 0) < 0) return std::nullopt;
    const Message answer = ask(bus.get(), call.get(), end);
    const void* bytes = nullptr;
    std::size_t size = 0;
    sd_id128_t id{};
    if (!answer || sd_bus_message_read_array(answer.get(), 'y', &bytes, &size) <= 0 || size != sizeof id.bytes) return std::nullopt;
    std::copy_n(static_cast<const std::uint8_t*>(bytes), size, id.bytes);
    char text[SD_ID128_UUID_STRING_MAX];
    return std::string(sd_id128_to_uuid_string(id, text));
}

}  // namespace halvane::linux
