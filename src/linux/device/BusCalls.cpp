#include "linux/device/BusCalls.h"

#include <cerrno>
#include <cstdint>

namespace halvane::linux {

using Clock = std::chrono::steady_clock;

struct BusCalls::Reply {
    bool arrived = false;
    BusMessage message;
    std::string error;
};

BusPointer connectToBus(const std::string& address) {
    sd_bus* raw = nullptr;
    const int opened = address.empty() ? sd_bus_open_system(&raw) : sd_bus_new(&raw);
    BusPointer bus(raw);
    const bool connected = opened >= 0 && (address.empty() || (sd_bus_set_address(raw, address.c_str()) >= 0 &&
                                                               sd_bus_set_bus_client(raw, 1) >= 0 && sd_bus_start(raw) >= 0));
    if (!connected) bus.reset();
    return bus;
}

BusCalls::BusCalls(const std::string& address, std::chrono::milliseconds deadline)
    : end_(Clock::now() + deadline), bus_(connectToBus(address)) {}

BusMessage BusCalls::question(const char* service, const char* path, const char* interface, const char* method) const {
    sd_bus_message* raw = nullptr;
    if (!bus_ || sd_bus_message_new_method_call(bus_.get(), &raw, service, path, interface, method) < 0) return {};
    return BusMessage(raw);
}

int BusCalls::onReply(sd_bus_message* message, void* userData, sd_bus_error*) {
    auto& reply = *static_cast<Reply*>(userData);
    reply.arrived = true;
    const sd_bus_error* error = sd_bus_message_get_error(message);
    if (error == nullptr) {
        reply.message.reset(sd_bus_message_ref(message));
    } else if (error->name != nullptr) {
        reply.error = error->name;
    }
    return 0;
}

/// The blocking call of the library starts its clock only when the bus has let us in; a bus that
/// accepts and then says nothing would hold us for its own, much longer, time.
BusMessage BusCalls::ask(sd_bus_message* question) {
    Reply reply;
    error_.clear();
    if (!bus_ || question == nullptr || sd_bus_call_async(bus_.get(), nullptr, question, &BusCalls::onReply, &reply, 0) < 0) return {};
    while (!reply.arrived) {
        const int worked = sd_bus_process(bus_.get(), nullptr);
        if (worked > 0) continue;
        const auto left = std::chrono::duration_cast<std::chrono::microseconds>(end_ - Clock::now());
        const int waited = worked < 0 || left.count() <= 0 ? -ETIMEDOUT : sd_bus_wait(bus_.get(), static_cast<std::uint64_t>(left.count()));
        if (waited >= 0 || waited == -EINTR) continue;
        // The reply would be written to where nobody is any more.
        bus_.reset();
        return {};
    }
    error_ = reply.error;
    return std::move(reply.message);
}

}  // namespace halvane::linux
