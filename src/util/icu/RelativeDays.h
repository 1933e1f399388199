#pragma once

#include "util/icu/Region.h"

#include <string>

namespace halvane::util {

/// Days by their names, in the words of a region's language: "Today", "今天". Any thread.
struct RelativeDays {
    static std::string today(const Region& region);
    static std::string yesterday(const Region& region);
};

}  // namespace halvane::util
