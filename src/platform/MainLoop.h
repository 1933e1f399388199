#pragma once

#include "platform/DispatchQueue.h"

#include <memory>

namespace halvane::platform {

/// The serial queue whose blocks run on the main thread, where all interface work happens.
/// Any thread may call `async` and `after`; `every` and timers belong to the main thread.
class MainLoop : public DispatchQueue {
public:
    /// Runs until it is destroyed or stopped. A block may destroy its own timer.
    class Timer {
    public:
        virtual ~Timer() = default;
        virtual void stop() = 0;
    };

    /// First after one `interval`, then again and again; turns missed while the computer slept are
    /// not made up for.
    [[nodiscard]] virtual std::unique_ptr<Timer> every(std::chrono::milliseconds interval, Block block) = 0;
};

}  // namespace halvane::platform
