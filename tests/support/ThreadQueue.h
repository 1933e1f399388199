#pragma once

#include "platform/DispatchQueue.h"

#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

namespace halvane::test {

/// A queue with threads of its own: serial with one, concurrent with more. What still waits when it is
/// destroyed never runs.
class ThreadQueue final : public platform::DispatchQueue {
public:
    explicit ThreadQueue(int threads = 1) {
        for (int i = 0; i < threads; ++i) threads_.emplace_back([this] { run(); });
    }
    ~ThreadQueue() override {
        {
            const std::lock_guard lock(mutex_);
            stopped_ = true;
        }
        changed_.notify_all();
        for (auto& thread : threads_) thread.join();
    }
    ThreadQueue(const ThreadQueue&) = delete;
    ThreadQueue& operator=(const ThreadQueue&) = delete;

    void async(Block block) override { after(std::chrono::milliseconds(0), std::move(block)); }
    void after(std::chrono::milliseconds delay, Block block) override {
        {
            const std::lock_guard lock(mutex_);
            blocks_.emplace(Clock::now() + delay, std::move(block));
            ++posted_;
        }
        changed_.notify_one();
        arrived_.notify_all();
    }
    /// How many blocks were ever handed in.
    [[nodiscard]] int posted() const {
        const std::lock_guard lock(mutex_);
        return posted_;
    }
    /// Waits until there were `count`; false when there are fewer after thirty seconds.
    bool awaitPosted(int count) {
        std::unique_lock lock(mutex_);
        return arrived_.wait_for(lock, std::chrono::seconds(30), [&] { return posted_ >= count; });
    }

private:
    using Clock = std::chrono::steady_clock;

    void run() {
        std::unique_lock lock(mutex_);
        while (!stopped_) {
            if (blocks_.empty()) {
                changed_.wait(lock);
            } else if (const auto due = blocks_.begin()->first; due > Clock::now()) {
                changed_.wait_until(lock, due);
            } else {
                auto node = blocks_.extract(blocks_.begin());
                lock.unlock();
                node.mapped()();
                node = {};
                lock.lock();
            }
        }
    }

    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::condition_variable arrived_;
    std::multimap<Clock::time_point, Block> blocks_;
    int posted_ = 0;
    bool stopped_ = false;
    std::vector<std::thread> threads_;
};

}  // namespace halvane::test
