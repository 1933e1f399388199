#include "util/icu/ClockText.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace halvane::util {
namespace {

TEST(ClockText, a_time_is_told_in_local_digits_by_its_seconds_or_milliseconds) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    const std::tuple<const char*, double, const char*, const char*> rows[] = {
        {"the beginning", 0, "Asia/Shanghai", "1970-01-01 08:00:00"},
        {"seconds", 1795458002, "Asia/Shanghai", "2026-11-24 02:20:02"},
        {"milliseconds", 1795458002999, "Asia/Shanghai", "2026-11-24 02:20:02"},
        {"a part of a second", 1795458002.9, "UTC", "2026-11-23 18:20:02"},
        {"the last seconds", 1.4e11, "UTC", "6406-06-04 08:53:20"},
        {"the first milliseconds", 140000000001, "UTC", "1974-06-09 08:53:20"},
        {"before 1970", -1, "UTC", "1969-12-31 23:59:59"},
        {"a moment before", -0.25, "UTC", "1969-12-31 23:59:59"},
        {"hardly before", -1e-7, "UTC", "1969-12-31 23:59:59"},
        {"far back, by the Julian calendar", -62135596800, "UTC", "0001-01-03 00:00:00"},
        {"last second of winter time", 1774745999, "Europe/Berlin", "2026-03-29 01:59:59"},
        {"first of summer time", 1774746000, "Europe/Berlin", "2026-03-29 03:00:00"},
        {"the hour that comes twice", 1792888200, "Europe/Berlin", "2026-10-25 02:30:00"},
        {"and its second time", 1792891800, "Europe/Berlin", "2026-10-25 02:30:00"},
        {"an unknown zone", 0, "Nowhere/Land", "1970-01-01 00:00:00"},
        {"no number", std::nan(""), "UTC", ""},
        {"infinite", kInfinity, "UTC", ""},
        {"infinite before", -kInfinity, "UTC", ""},
        {"beyond all time", 1e300, "UTC", ""},
    };
    for (const auto& [name, time, zone, text] : rows) {
        for (const char* locale : {"en_US", "zh_CN", "ar_EG", "th_TH"}) {
            EXPECT_EQ(ClockText::getDateWithTime(time, {locale, zone}), text) << name << ", " << locale;
        }
    }
}

TEST(ClockText, seconds_are_told_as_hours_minutes_and_seconds) {
    const std::pair<std::int64_t, const char*> rows[] = {
        {0, "00:00:00"},
        {59, "00:00:59"},
        {60, "00:01:00"},
        {3599, "00:59:59"},
        {3600, "01:00:00"},
        {3725, "01:02:05"},
        {359999, "99:59:59"},
        {360000, "100:00:00"},
        {-1, "00:00:-1"},
        {-3725, "-1:-2:-5"},
        {std::numeric_limits<std::int64_t>::max(), "2562047788015215:30:07"},
        {std::numeric_limits<std::int64_t>::min(), "-2562047788015215:-30:-8"},
    };
    for (const auto& [seconds, text] : rows) EXPECT_EQ(ClockText::getMMSSFromSS(seconds), text);
}

}  // namespace
}  // namespace halvane::util
