#pragma once

#include <chrono>
#include <functional>

namespace halvane::util {

/// A point in time, in whole microseconds since 1970 (UTC); those before are negative. Years -290,000 to 294,000.
using Moment = std::chrono::sys_time<std::chrono::microseconds>;

/// Says what time it is. An operation asks once, however often it needs to know: midnight does not pass inside of it.
using Clock = std::function<Moment()>;

inline Moment currentMoment() { return std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now()); }

}  // namespace halvane::util
