#pragma once

#include "util/icu/Region.h"

#include <cstdint>
#include <string>

namespace halvane::util {

/// Moments and durations as digits. Any thread.
struct ClockText {
    /// Local time as "2026-11-23 18:20:02", everywhere in the same digits and calendar. `time` is seconds since 1970, or,
    /// above 1.4e11, milliseconds. Empty for what is no time.
    static std::string getDateWithTime(double time, const Region& region = Region::current());

    /// Whole seconds as hours, minutes and seconds of at least two digits each: 3725 as "01:02:05".
    static std::string getMMSSFromSS(std::int64_t seconds);
};

}  // namespace halvane::util
