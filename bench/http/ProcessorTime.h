#pragma once

#include <sys/resource.h>

namespace halvane::bench {

/// Seconds of CPU that this process has used, all its threads together.
inline double processorTime() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& time) { return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6; };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

}  // namespace halvane::bench
