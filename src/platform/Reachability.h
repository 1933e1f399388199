#pragma once

#include <cstdint>
#include <functional>

namespace halvane::platform {

/// The numbers are those that callers compare.
enum class ReachabilityStatus : int { Unknown = -1, NotReachable = 0, WideAreaNetwork = 1, Wifi = 2 };

/// Whether, and by what, this computer reaches a network. Any thread.
class Reachability {
public:
    using Handler = std::function<void(ReachabilityStatus)>;

    virtual ~Reachability() = default;
    /// Begins to watch; a second call does nothing. Never blocks.
    virtual void startMonitoring() = 0;
    [[nodiscard]] virtual ReachabilityStatus status() const = 0;
    /// The one handler, replaced by the next; called on the queue that the monitor was made with, once with the present status
    /// after monitoring began and then at each change.
    virtual void setHandler(Handler handler) = 0;
};

}  // namespace halvane::platform
