#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace halvane::test {

/// A door that the test opens; what waits at it gives up after thirty seconds.
class Gate {
public:
    void open() {
        const std::lock_guard lock(mutex_);
        open_ = true;
        changed_.notify_all();
    }
    bool pass() {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, std::chrono::seconds(30), [this] { return open_; });
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    bool open_ = false;
};

}  // namespace halvane::test
