#pragma once

#include "platform/Reachability.h"

#include <chrono>
#include <memory>
#include <optional>
#include <string>

namespace halvane::linux {

/// What NetworkManager says of the network, followed over the system bus without ever blocking: the
/// owner polls `descriptor` and calls `process`. One thread, that of the owner.
class NetworkManagerClient {
public:
    enum class Knowledge {
        Asked,   ///< the bus or NetworkManager has not answered yet
        Absent,  ///< no bus, no NetworkManager, or one that refuses to answer
        Known    ///< `status` is its word
    };

    /// An empty address is the system's bus.
    explicit NetworkManagerClient(const std::string& busAddress);
    ~NetworkManagerClient();
    NetworkManagerClient(const NetworkManagerClient&) = delete;
    NetworkManagerClient& operator=(const NetworkManagerClient&) = delete;

    [[nodiscard]] Knowledge knowledge() const;
    [[nodiscard]] platform::ReachabilityStatus status() const;

    /// -1 without a bus.
    [[nodiscard]] int descriptor() const;
    /// What to poll for.
    [[nodiscard]] short events() const;
    /// When `process` is due even though nothing arrived.
    [[nodiscard]] std::optional<std::chrono::steady_clock::time_point> due() const;
    /// Takes in what arrived.
    void process();

private:
    class State;
    std::unique_ptr<State> state_;
};

}  // namespace halvane::linux
