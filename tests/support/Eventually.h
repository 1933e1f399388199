#pragma once

#include <chrono>
#include <functional>
#include <thread>

namespace halvane::test {

/// Whether `condition` comes true before the deadline; looks every millisecond. For what other
/// threads and processes bring about.
inline bool eventually(const std::function<bool()>& condition, std::chrono::milliseconds deadline = std::chrono::seconds(20)) {
    const auto end = std::chrono::steady_clock::now() + deadline;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

}  // namespace halvane::test
