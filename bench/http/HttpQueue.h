#pragma once

#include "platform/DispatchQueue.h"

#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace halvane::bench {

/// A serial queue with a thread of its own, as lean as one can be: the same for every contestant. It
/// takes what has gathered in one go, and only a sleeping thread is woken.
class HttpQueue final : public platform::DispatchQueue {
public:
    HttpQueue() : thread_([this] { run(); }) {}
    ~HttpQueue() override {
        {
            const std::lock_guard lock(mutex_);
            stopped_ = true;
        }
        changed_.notify_one();
        thread_.join();
    }
    HttpQueue(const HttpQueue&) = delete;
    HttpQueue& operator=(const HttpQueue&) = delete;

    void async(Block block) override {
        std::unique_lock lock(mutex_);
        blocks_.push_back(std::move(block));
        const bool wake = std::exchange(sleeping_, false);
        lock.unlock();
        if (wake) changed_.notify_one();
    }
    void after(std::chrono::milliseconds /*delay*/, Block block) override { async(std::move(block)); }

private:
    void run() {
        std::vector<Block> taken;
        std::unique_lock lock(mutex_);
        while (!stopped_) {
            if (blocks_.empty()) {
                sleeping_ = true;
                changed_.wait(lock, [this] { return !blocks_.empty() || stopped_; });
                sleeping_ = false;
            }
            std::swap(taken, blocks_);
            lock.unlock();
            for (const Block& block : taken) block();
            taken.clear();
            lock.lock();
        }
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<Block> blocks_;
    bool sleeping_ = false;
    bool stopped_ = false;
    std::thread thread_;
};

}  // namespace halvane::bench
