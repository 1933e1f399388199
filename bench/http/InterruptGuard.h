#pragma once

#include <atomic>
#include <csignal>
#include <filesystem>
#include <thread>

namespace halvane::bench {

/// Removes a directory when the bench is interrupted or told to end: on /dev/shm, what it left would be memory
/// that nobody gets back. Made before all other threads, which inherit that the signals are its own.
class InterruptGuard {
public:
    explicit InterruptGuard(std::filesystem::path directory);
    ~InterruptGuard();
    InterruptGuard(const InterruptGuard&) = delete;
    InterruptGuard& operator=(const InterruptGuard&) = delete;

private:
    void run();

    const std::filesystem::path directory_;
    sigset_t signals_{};
    std::atomic<bool> stopped_{false};
    std::thread thread_;
};

}  // namespace halvane::bench
