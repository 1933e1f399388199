#pragma once

#include <chrono>
#include <functional>

namespace halvane::platform {

/// Runs blocks later, never inside the call. Serial queues run them one at a time, in order;
/// concurrent ones several at once. Blocks must not throw. Any thread may hand blocks in; those
/// that a queue still holds when it is destroyed never run.
class DispatchQueue {
public:
    using Block = std::function<void()>;

    virtual ~DispatchQueue() = default;
    virtual void async(Block block) = 0;
    virtual void after(std::chrono::milliseconds delay, Block block) = 0;
};

}  // namespace halvane::platform
