#pragma once

#include "platform/MainLoop.h"

#include <cstdint>
#include <map>
#include <mutex>

namespace halvane::test {

/// A main loop whose clock moves only when told. `async` blocks run in `runPending` and `advance`,
/// in order; delayed ones in the order of their times. Blocks may be handed in from any thread.
class ManualMainLoop final : public platform::MainLoop {
public:
    void async(Block block) override;
    void after(std::chrono::milliseconds delay, Block block) override;
    std::unique_ptr<Timer> every(std::chrono::milliseconds interval, Block block) override;

    /// Runs what is due now, and what that hands in for now. Answers how many blocks ran.
    int runPending() { return advance(std::chrono::milliseconds(0)); }
    /// Moves the clock to each due time in turn, up to `duration` from now.
    int advance(std::chrono::milliseconds duration);
    /// Blocks and timers that wait.
    [[nodiscard]] std::size_t waiting() const;

private:
    class ManualTimer;
    using Key = std::pair<std::chrono::milliseconds, std::uint64_t>;  // due time, order of arrival

    void schedule(std::chrono::milliseconds due, Block block);

    mutable std::mutex mutex_;
    std::chrono::milliseconds now_{0};
    std::uint64_t arrivals_ = 0;
    std::map<Key, Block> blocks_;
};

}  // namespace halvane::test
