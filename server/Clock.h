#pragma once

#include <chrono>
#include <functional>

namespace halvane::server {

using Time = std::chrono::sys_seconds;

/// Where the time comes from: what expires is tested by turning a clock, not by waiting. Called on any thread.
using Clock = std::function<Time()>;

inline Clock systemClock() {
    return [] { return std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now()); };
}

}  // namespace halvane::server
