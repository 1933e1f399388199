#include "util/icu/ClockText.h"

#include "util/icu/DateFormatter.h"

#include <fmt/format.h>

#include <cmath>

namespace halvane::util {

std::string ClockText::getDateWithTime(double time, const Region& region) {
    constexpr double kMostSeconds = 1.4e11;
    constexpr double kMicrosecondsPerSecond = 1e6;
    const double microseconds = (time > kMostSeconds ? time / 1000 : time) * kMicrosecondsPerSecond;
    constexpr double kFurthest = 9.2e18;
    if (!(std::abs(microseconds) < kFurthest)) return {};
    const Moment moment(std::chrono::microseconds(static_cast<std::int64_t>(std::floor(microseconds))));
    return DateFormatter({"en_US", region.timeZone}, "yyyy-MM-dd HH:mm:ss").string(moment);
}

std::string ClockText::getMMSSFromSS(std::int64_t seconds) {
    constexpr std::int64_t kMinute = 60;
    constexpr std::int64_t kHour = 60 * kMinute;
    const std::int64_t hours = seconds / kHour;
    return fmt::format("{:02}:{:02}:{:02}", hours, (seconds - hours * kHour) / kMinute, seconds % kMinute);
}

}  // namespace halvane::util
