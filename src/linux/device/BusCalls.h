#pragma once

#include <systemd/sd-bus.h>

#include <chrono>
#include <memory>
#include <string>

namespace halvane::linux {

struct UnrefBusMessage {
    void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
using BusMessage = std::unique_ptr<sd_bus_message, UnrefBusMessage>;

struct CloseBus {
    // Without flushing: that would wait for a bus that does not read.
    void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
};
using BusPointer = std::unique_ptr<sd_bus, CloseBus>;

/// Begins a connection, without waiting for the bus to let us in. `address`: the bus to use; empty for the system's.
/// Null when there is none.
BusPointer connectToBus(const std::string& address);

/// A few questions to services on a bus. It connects, asks and hangs up; all of it together blocks for the deadline at
/// the most, whatever the other side does. One thread.
class BusCalls {
public:
    /// `address`: the bus to use; empty for the system's.
    BusCalls(const std::string& address, std::chrono::milliseconds deadline);

    [[nodiscard]] bool isConnected() const { return bus_ != nullptr; }
    /// A call that is yet to be filled and asked; null when there is no bus.
    [[nodiscard]] BusMessage question(const char* service, const char* path, const char* interface, const char* method) const;
    /// The answer; null after an error, a late answer included. `error` is then its name, or empty.
    [[nodiscard]] BusMessage ask(sd_bus_message* question);
    [[nodiscard]] const std::string& error() const { return error_; }

private:
    struct Reply;
    static int onReply(sd_bus_message* message, void* reply, sd_bus_error* error);

    const std::chrono::steady_clock::time_point end_;
    BusPointer bus_;
    std::string error_;
};

}  // namespace halvane::linux
