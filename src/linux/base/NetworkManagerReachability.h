#pragma once

#include "linux/device/SystemFiles.h"
#include "platform/DispatchQueue.h"
#include "platform/Reachability.h"

#include <memory>
#include <string>
#include <thread>

namespace halvane::linux {

/// Reachability by NetworkManager; where it is absent, or has not answered within `kPatience`, by
/// whether the kernel has a default route. Watched on a thread of its own, which begins with
/// `startMonitoring`. A handler that is set later than the status is known hears that status first.
/// Destroying it, which a handler may do, ends the thread at once; a handler that waits on that
/// queue is not called any more. `queue`, a serial one, outlives this object.
class NetworkManagerReachability final : public platform::Reachability {
public:
    static constexpr std::chrono::milliseconds kPatience{2000};

    /// Where to look, and how long to wait; the defaults are for this machine.
    struct Sources {
        std::string busAddress;  ///< empty: the system's bus
        SystemFiles files;
        std::chrono::milliseconds patience = kPatience;
    };

    explicit NetworkManagerReachability(platform::DispatchQueue& queue) : NetworkManagerReachability(queue, Sources()) {}
    NetworkManagerReachability(platform::DispatchQueue& queue, Sources sources);
    ~NetworkManagerReachability() override;
    NetworkManagerReachability(const NetworkManagerReachability&) = delete;
    NetworkManagerReachability& operator=(const NetworkManagerReachability&) = delete;

    void startMonitoring() override;
    [[nodiscard]] platform::ReachabilityStatus status() const override;
    void setHandler(Handler handler) override;

private:
    class Watch;
    const std::shared_ptr<Watch> watch_;
};

}  // namespace halvane::linux
