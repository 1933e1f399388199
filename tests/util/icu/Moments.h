#pragma once

#include "util/icu/Moment.h"

#include <cstdio>
#include <stdexcept>
#include <utility>

namespace halvane::util {

/// "2026-11-23 18:20:02 +8": a wall time and how many hours it is ahead of UTC, so that no row is reckoned by what it tests.
inline Moment at(const char* text) {
    int year = 0, hour = 0, minute = 0, second = 0, ahead = 0;
    unsigned month = 0, day = 0;
    if (std::sscanf(text, "%d-%u-%u %d:%d:%d %d", &year, &month, &day, &hour, &minute, &second, &ahead) != 7)
        throw std::invalid_argument(text);
    const std::chrono::sys_days date = std::chrono::year(year) / std::chrono::month(month) / std::chrono::day(day);
    return date + std::chrono::hours(hour - ahead) + std::chrono::minutes(minute) + std::chrono::seconds(second);
}

/// A clock that stands still.
inline Clock stoppedAt(const char* text) {
    return [now = at(text)] { return now; };
}

/// A clock that goes on by an hour each time it is asked: who asks twice contradicts himself around midnight.
inline Clock hastyFrom(const char* text) {
    return [now = at(text)]() mutable { return std::exchange(now, now + std::chrono::hours(1)); };
}

}  // namespace halvane::util
