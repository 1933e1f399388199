#include "util/icu/FetchDateString.h"

#include "util/icu/Moments.h"

#include <gtest/gtest.h>

#include <limits>

namespace halvane::util {
namespace {

struct Row {
    const char* name;
    const char* zone;
    const char* now;
    const char* days[3];    ///< today, yesterday, the day before
    const char* months[3];  ///< this one, the last, the one before
};

constexpr Row kRows[] = {
    {"a day", "Asia/Shanghai", "2026-11-23 18:20:02 8", {"20261123", "20261122", "20261121"}, {"202611", "202610", "202609"}},
    {"first of the year", "Asia/Shanghai", "2026-01-01 00:00:00 8", {"20260101", "20251231", "20251230"}, {"202601", "202512", "202511"}},
    {"just before it", "Asia/Shanghai", "2025-12-31 23:59:59 8", {"20251231", "20251230", "20251229"}, {"202512", "202511", "202510"}},
    {"local, not UTC", "America/New_York", "2026-03-01 00:30:00 -5", {"20260301", "20260228", "20260227"}, {"202603", "202602", "202601"}},
    {"last of a long month", "UTC", "2026-03-31 12:00:00 0", {"20260331", "20260330", "20260329"}, {"202603", "202602", "202601"}},
    {"after a leap day", "UTC", "2028-03-01 12:00:00 0", {"20280301", "20280229", "20280228"}, {"202803", "202802", "202801"}},
    {"day after a short day",
     "Europe/Berlin",
     "2026-03-30 00:15:00 2",
     {"20260330", "20260329", "20260328"},
     {"202603", "202602", "202601"}},
    {"yesterday lacks this hour",
     "Europe/Berlin",
     "2026-03-30 02:30:00 2",
     {"20260330", "20260329", "20260328"},
     {"202603", "202602", "202601"}},
    {"day after a long day",
     "Europe/Berlin",
     "2026-10-26 23:30:00 1",
     {"20261026", "20261025", "20261024"},
     {"202610", "202609", "202608"}},
    {"before 1970", "UTC", "1969-03-01 00:00:00 0", {"19690301", "19690228", "19690227"}, {"196903", "196902", "196901"}},
    {"a day that was left out",
     "Pacific/Apia",
     "2011-12-31 10:00:00 14",
     {"20111231", "20111229", "20111228"},
     {"201112", "201111", "201110"}},
};

TEST(FetchDateString, days_and_months_are_those_around_now) {
    for (const auto& [name, zone, now, days, months] : kRows) {
        for (const char* locale : {"en_US", "zh_CN", "ar_EG", "th_TH", "fa_IR"}) {
            const FetchDateString dates({locale, zone}, stoppedAt(now));
            const std::string place = std::string(name) + ", " + locale;
            EXPECT_EQ(dates.getCurrentDayDateStr(), days[0]) << place;
            EXPECT_EQ(dates.getYesterdayDateStr(), days[1]) << place;
            EXPECT_EQ(dates.getTheDayBeforeYesterdayDateStr(), days[2]) << place;
            EXPECT_EQ(dates.getCurrentMonthDateStr(), months[0]) << place;
            EXPECT_EQ(dates.getLastMonthDateStr(), months[1]) << place;
            EXPECT_EQ(dates.getMonthBeforeLastMonthStr(), months[2]) << place;
            EXPECT_EQ(dates.getCurrentMonthFormatDateStr(), std::string(months[0]).insert(4, "-")) << place;
            EXPECT_EQ(dates.getCurrentYearDateStr(), std::string(months[0]).substr(0, 4)) << place;
        }
    }
}

TEST(FetchDateString, days_from_today_reach_far_in_both_directions) {
    const FetchDateString dates({"zh_CN", "Asia/Shanghai"}, stoppedAt("2026-11-23 18:20:02 8"));
    const std::pair<std::int64_t, const char*> rows[] = {
        {0, "20261123"},   {1, "20261124"},    {8, "20261201"},      {39, "20270101"},     {365, "20271123"},
        {-23, "20261031"}, {-365, "20251123"}, {-20780, "19700101"}, {-20781, "19691231"},
    };
    for (const auto& [days, text] : rows) EXPECT_EQ(dates.getTheDayAfterNumberOfDay(days), text) << days;
    EXPECT_EQ(dates.getTheDayAfterNumberOfDay(std::numeric_limits<std::int64_t>::max()), dates.getTheDayAfterNumberOfDay(1LL << 40))
        << "the last there is";
    EXPECT_FALSE(dates.getTheDayAfterNumberOfDay(std::numeric_limits<std::int64_t>::min()).empty());
}

TEST(FetchDateString, a_format_of_ones_own_has_words_of_the_region) {
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"zh_CN", "yyyy年M月d日 EEEE", "2026年11月23日 星期一"},
        {"en_US", "EEEE, MMMM d", "Monday, November 23"},
        {"ar_EG", "dd/MM/yyyy", "23/11/2026"},
        {"th_TH", "yyyy", "2026"},
        {"en_US", "", ""},
        {"en_US", "'today'", "today"},
    };
    for (const auto& [locale, format, text] : rows) {
        EXPECT_EQ(FetchDateString({locale, "UTC"}, stoppedAt("2026-11-23 18:20:02 0")).getCurrentDayDateStrWithFormat(format), text)
            << locale;
    }
}

TEST(FetchDateString, each_call_asks_the_clock_once) {
    FetchDateString dates({"en_US", "UTC"}, hastyFrom("2026-12-31 22:30:00 0"));
    EXPECT_EQ(dates.getCurrentMonthFormatDateStr(), "2026-12");
    EXPECT_EQ(dates.getTheDayAfterNumberOfDay(1), "20270101") << "one hour later";
    EXPECT_EQ(dates.getLastMonthDateStr(), "202612") << "after midnight";
}

}  // namespace
}  // namespace halvane::util
