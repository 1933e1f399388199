#pragma once

#include "platform/DispatchQueue.h"

#include <memory>
#include <string>

namespace asio {
class thread_pool;
}

namespace halvane::linux {

/// A queue on threads that it shares with others. Made by AsioDispatchQueues.
///
/// At most `width` blocks run at once; with a width of 1 they run in the order in which they were
/// handed in. Destroying the queue, which a block of its own may do, waits for nothing: blocks that
/// run go on to their end, those that wait are dropped at once together with what they hold.
/// An exception that leaves a block is a bug and ends the program.
class AsioDispatchQueue final : public platform::DispatchQueue {
public:
    AsioDispatchQueue(std::shared_ptr<asio::thread_pool> threads, const std::string& name, unsigned width);
    ~AsioDispatchQueue() override;
    AsioDispatchQueue(const AsioDispatchQueue&) = delete;
    AsioDispatchQueue& operator=(const AsioDispatchQueue&) = delete;

    void async(Block block) override;
    void after(std::chrono::milliseconds delay, Block block) override;

    /// Drops what waits; from now on blocks are dropped as they come. Any thread.
    void close();

private:
    class State;
    std::shared_ptr<State> state_;
};

}  // namespace halvane::linux
