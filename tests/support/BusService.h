#pragma once

#include "support/PrivateBus.h"

#include <systemd/sd-bus.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>

namespace halvane::test {

/// A service on a bus of the test's own, at one name and one path, served from a thread of its own.
class BusService {
public:
    /// Answers a call, and then something positive; 0 for a call that it does not know. On the service's thread.
    using Handler = std::function<int(sd_bus_message* call)>;

    /// Ready when it is made.
    BusService(const PrivateBus& bus, std::string name, std::string path, Handler handler);
    ~BusService();
    BusService(const BusService&) = delete;
    BusService& operator=(const BusService&) = delete;

private:
    void serve(const std::string& address);
    static int onCall(sd_bus_message* call, void* self, sd_bus_error* error);

    const std::string name_;
    const std::string path_;
    const Handler handler_;
    std::atomic<bool> ready_{false};
    std::atomic<bool> ending_{false};
    std::thread thread_;
};

}  // namespace halvane::test
