#include "util/icu/DateHelper.h"

#include "util/icu/Moments.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace halvane::util {
namespace {

struct DaysRow {
    const char* name;
    const char* zone;
    const char* date;
    const char* now;
    int days;
    int midnights;
};

constexpr DaysRow kDays[] = {
    {"the same moment", "Asia/Shanghai", "2026-11-23 18:20:02 8", "2026-11-23 18:20:02 8", 0, 0},
    {"this morning", "Asia/Shanghai", "2026-11-23 00:00:00 8", "2026-11-23 23:59:59 8", 0, 0},
    {"a moment before midnight", "Asia/Shanghai", "2026-11-22 23:59:59 8", "2026-11-23 00:00:00 8", 0, 1},
    {"a day less a second", "Asia/Shanghai", "2026-11-22 18:20:02 8", "2026-11-23 18:20:01 8", 0, 1},
    {"a day", "Asia/Shanghai", "2026-11-22 18:20:02 8", "2026-11-23 18:20:02 8", 1, 1},
    {"five days", "Asia/Shanghai", "2026-11-18 09:00:00 8", "2026-11-23 18:20:02 8", 5, 5},
    {"midnight of UTC is none here", "Asia/Shanghai", "2026-11-22 23:00:00 0", "2026-11-23 10:00:00 0", 0, 0},
    {"over the turn of the year", "Asia/Shanghai", "2025-12-31 12:00:00 8", "2026-01-01 11:00:00 8", 0, 1},
    {"a leap year", "UTC", "2027-11-23 00:00:00 0", "2028-11-23 00:00:00 0", 366, 366},
    {"before 1970", "UTC", "1969-12-30 12:00:00 0", "1970-01-01 12:00:00 0", 2, 2},
    {"tomorrow", "Asia/Shanghai", "2026-11-24 18:20:02 8", "2026-11-23 18:20:02 8", -1, 0},
    {"in two days", "Asia/Shanghai", "2026-11-25 18:20:03 8", "2026-11-23 18:20:02 8", -2, -1},
    // A day of 23 hours is a day to the calendar, but its midnight is less than 86400 seconds away.
    {"the short day", "Europe/Berlin", "2026-03-28 23:30:00 1", "2026-03-29 23:30:00 2", 1, 1},
    {"midnight after the short day", "Europe/Berlin", "2026-03-29 00:00:00 1", "2026-03-30 00:00:00 2", 1, 0},
    {"an hour past it", "Europe/Berlin", "2026-03-29 00:00:00 1", "2026-03-30 01:00:00 2", 1, 1},
    {"the long day", "Europe/Berlin", "2026-10-25 00:00:00 2", "2026-10-25 23:30:00 1", 0, 1},
    {"a day that begins at one", "America/Sao_Paulo", "2018-11-04 02:00:00 -2", "2018-11-05 00:30:00 -2", 0, 0},
    {"a day that begins twice", "America/Havana", "2026-11-01 00:30:00 -5", "2026-11-01 23:30:00 -5", 0, 1},
};

TEST(DateHelper, days_ago_by_the_calendar_and_by_midnights) {
    for (const auto& [name, zone, date, now, days, midnights] : kDays) {
        DateHelper helper({"en_US", zone}, stoppedAt(now));
        EXPECT_EQ(helper.daysAgo(at(date)), days) << name;
        EXPECT_EQ(helper.daysAgoAgainstMidnight(at(date)), midnights) << name;
        EXPECT_EQ(helper.sharedDateFormatter().dateFormat(), "yyyy-MM-dd");
    }
}

TEST(DateHelper, days_and_years_are_counted_through_eras) {
    DateHelper japan({"ja_JP@calendar=japanese", "Asia/Tokyo"}, stoppedAt("2026-11-23 18:20:02 9"));
    EXPECT_EQ(japan.daysAgoAgainstMidnight(at("2016-11-26 01:00:00 9")), 3649) << "of the era before";
    EXPECT_EQ(japan.year(at("2016-11-26 01:00:00 9")), 28);
    EXPECT_EQ(japan.stringForDisplayFromDate(at("2016-11-26 01:00:00 9")), "11月 26, 0028");
    DateHelper ancient({"en_US", "UTC"}, stoppedAt("2026-11-23 18:20:02 0"));
    const Moment bronze = at("-1200-11-26 01:00:00 0");
    EXPECT_EQ(ancient.daysAgoAgainstMidnight(bronze), ancient.daysAgo(bronze));
    EXPECT_NE(ancient.stringForDisplayFromDate(bronze).find("1201"), std::string::npos);
}

TEST(DateHelper, relative_days_have_the_words_of_the_region) {
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"2026-11-23 00:00:00 8", "Today", "今天"},
        {"2026-11-22 23:59:59 8", "Yesterday", "昨天"},
        {"2026-11-18 23:00:00 8", "5 days ago", "5 days ago"},
        {"2026-11-26 00:00:00 8", "-2 days ago", "-2 days ago"},
    };
    for (const auto& [date, english, chinese] : rows) {
        DateHelper here({"en_US", "Asia/Shanghai"}, stoppedAt("2026-11-23 18:20:02 8"));
        DateHelper there({"zh_CN", "Asia/Shanghai"}, stoppedAt("2026-11-23 18:20:02 8"));
        EXPECT_EQ(here.stringDaysAgoAgainstMidnight(at(date), true), english);
        EXPECT_EQ(there.stringDaysAgoAgainstMidnight(at(date), true), chinese);
    }
    DateHelper helper({"en_US", "Asia/Shanghai"}, stoppedAt("2026-11-23 18:20:02 8"));
    EXPECT_EQ(helper.stringDaysAgoAgainstMidnight(at("2026-11-22 23:59:59 8"), false), "Today") << "not yet a whole day";
    EXPECT_EQ(helper.stringDaysAgo(at("2026-11-22 23:59:59 8")), "Today");
    EXPECT_EQ(helper.stringDaysAgo(at("2026-11-22 18:20:02 8")), "Yesterday");
    EXPECT_EQ(DateHelper({"C", "UTC"}, stoppedAt("2026-11-23 18:20:02 0")).stringDaysAgo(at("2026-11-23 18:20:02 0")), "Today");
}

struct DisplayRow {
    const char* name;
    const char* zone;
    const char* now;
    const char* date;
    std::vector<const char*> english;  ///< plain, with time, with prefix, with both
    std::vector<const char*> chinese;
};

const DisplayRow kDisplays[] = {
    {"just now",
     "Asia/Shanghai",
     "2026-11-23 18:20:02 8",
     "2026-11-23 18:20:01 8",
     {"6:20 PM", "6:20 PM", "at 6:20 PM", "at 6:20 PM"},
     {"6:20 下午", "6:20 下午", "at 6:20 下午", "at 6:20 下午"}},
    {"a second past midnight",
     "Asia/Shanghai",
     "2026-11-23 18:20:02 8",
     "2026-11-23 00:00:01 8",
     {"12:00 AM", "12:00 AM", "at 12:00 AM", "at 12:00 AM"},
     {"12:00 上午", "12:00 上午", "at 12:00 上午", "at 12:00 上午"}},
    {"midnight itself",
     "Asia/Shanghai",
     "2026-11-23 18:20:02 8",
     "2026-11-23 00:00:00 8",
     {"Monday", "Monday 12:00 AM", "on Monday", "on Monday 12:00 AM"},
     {"星期一", "星期一 12:00 上午", "on 星期一", "on 星期一 12:00 上午"}},
    {"a second before",
     "Asia/Shanghai",
     "2026-11-23 18:20:02 8",
     "2026-11-22 23:59:59 8",
     {"Sunday", "Sunday 11:59 PM", "on Sunday", "on Sunday 11:59 PM"},
     {"星期日", "星期日 11:59 下午", "on 星期日", "on 星期日 11:59 下午"}},
    {"to come",
     "Asia/Shanghai",
     "2026-11-23 18:20:02 8",
     "2027-05-01 08:00:00 8",
     {"8:00 AM", "8:00 AM", "at 8:00 AM", "at 8:00 AM"},
     {"8:00 上午", "8:00 上午", "at 8:00 上午", "at 8:00 上午"}},
    {"a second less than seven days",
     "Asia/Shanghai",
     "2026-11-23 18:20:02 8",
     "2026-11-16 18:20:03 8",
     {"Monday", "Monday 6:20 PM", "on Monday", "on Monday 6:20 PM"},
     {"星期一", "星期一 6:20 下午", "on 星期一", "on 星期一 6:20 下午"}},
    {"seven days",
     "Asia/Shanghai",
     "2026-11-23 18:20:02 8",
     "2026-11-16 18:20:02 8",
     {"Nov 16", "Nov 16 6:20 PM", "on Nov 16", "on Nov 16 6:20 PM"},
     {"11月 16", "11月 16 6:20 下午", "on 11月 16", "on 11月 16 6:20 下午"}},
    {"first of the year",
     "Asia/Shanghai",
     "2026-11-23 18:20:02 8",
     "2026-01-01 00:00:00 8",
     {"Jan 1", "Jan 1 12:00 AM", "on Jan 1", "on Jan 1 12:00 AM"},
     {"1月 1", "1月 1 12:00 上午", "on 1月 1", "on 1月 1 12:00 上午"}},
    {"last of the year before",
     "Asia/Shanghai",
     "2026-11-23 18:20:02 8",
     "2025-12-31 23:59:59 8",
     {"Dec 31, 2025", "Dec 31, 2025 11:59 PM", "on Dec 31, 2025", "on Dec 31, 2025 11:59 PM"},
     {"12月 31, 2025", "12月 31, 2025 11:59 下午", "on 12月 31, 2025", "on 12月 31, 2025 11:59 下午"}},
    {"last year, but this week",
     "Asia/Shanghai",
     "2026-01-02 12:00:00 8",
     "2025-12-31 12:00:00 8",
     {"Wednesday", "Wednesday 12:00 PM", "on Wednesday", "on Wednesday 12:00 PM"},
     {"星期三", "星期三 12:00 下午", "on 星期三", "on 星期三 12:00 下午"}},
    {"by the local year",
     "America/New_York",
     "2026-02-01 12:00:00 -5",
     "2026-01-01 03:00:00 0",
     {"Dec 31, 2025", "Dec 31, 2025 10:00 PM", "on Dec 31, 2025", "on Dec 31, 2025 10:00 PM"},
     {}},
    {"seven days with a short one",
     "Europe/Berlin",
     "2026-03-30 12:00:00 2",
     "2026-03-23 12:00:01 1",
     {"Monday", "Monday 12:00 PM", "on Monday", "on Monday 12:00 PM"},
     {}},
    {"the same, and no more",
     "Europe/Berlin",
     "2026-03-30 12:00:00 2",
     "2026-03-23 12:00:00 1",
     {"Mar 23", "Mar 23 12:00 PM", "on Mar 23", "on Mar 23 12:00 PM"},
     {}},
    {"seven days with a long one",
     "Europe/Berlin",
     "2026-10-26 12:00:00 1",
     "2026-10-19 12:00:01 2",
     {"Monday", "Monday 12:00 PM", "on Monday", "on Monday 12:00 PM"},
     {}},
    {"after a midnight that there was not",
     "America/Sao_Paulo",
     "2018-11-04 09:00:00 -2",
     "2018-11-04 01:00:01 -2",
     {"1:00 AM", "1:00 AM", "at 1:00 AM", "at 1:00 AM"},
     {}},
    {"the first moment of that day",
     "America/Sao_Paulo",
     "2018-11-04 09:00:00 -2",
     "2018-11-04 01:00:00 -2",
     {"Sunday", "Sunday 1:00 AM", "on Sunday", "on Sunday 1:00 AM"},
     {}},
    {"between the two midnights",
     "America/Havana",
     "2026-11-01 09:00:00 -5",
     "2026-11-01 00:00:00 -5",
     {"12:00 AM", "12:00 AM", "at 12:00 AM", "at 12:00 AM"},
     {}},
    {"before 1970",
     "UTC",
     "2026-11-23 18:20:02 0",
     "1969-12-31 23:59:59 0",
     {"Dec 31, 1969", "Dec 31, 1969 11:59 PM", "on Dec 31, 1969", "on Dec 31, 1969 11:59 PM"},
     {}},
};

TEST(DateHelper, display_form_tells_less_of_what_is_nearer) {
    for (const auto& row : kDisplays) {
        for (const auto& [locale, texts] : {std::pair("en_US", row.english), std::pair("zh_CN", row.chinese)}) {
            for (std::size_t i = 0; i < texts.size(); ++i) {
                DateHelper helper({locale, row.zone}, stoppedAt(row.now));
                const bool prefixed = i >= 2;
                const bool withTime = i % 2 == 1;
                EXPECT_EQ(helper.stringForDisplayFromDate(at(row.date), prefixed, withTime), texts[i]) << row.name << ", " << locale;
            }
        }
    }
    DateHelper helper({"en_US", "UTC"}, stoppedAt("2026-11-23 18:20:02 0"));
    EXPECT_EQ(helper.stringForDisplayFromDate(at("2026-11-20 18:20:02 0")), "Friday");
    EXPECT_EQ(helper.stringForDisplayFromDate(at("2026-11-20 18:20:02 0"), true), "on Friday");
}

TEST(DateHelper, one_operation_knows_one_now) {
    // Before the clock is asked, the date is this evening's; an hour later it is yesterday's, and of last year.
    DateHelper helper({"en_US", "UTC"}, hastyFrom("2026-12-31 23:30:00 0"));
    EXPECT_EQ(helper.stringForDisplayFromDate(at("2026-12-31 08:00:00 0")), "8:00 AM");
    EXPECT_EQ(helper.stringForDisplayFromDate(at("2026-12-31 08:00:00 0")), "Thursday") << "asked again after midnight";
    EXPECT_EQ(helper.daysAgo(at("2026-12-31 01:30:00 0")), 1) << "asked at half past one";
    EXPECT_EQ(helper.stringDaysAgoAgainstMidnight(at("2026-12-31 08:00:00 0"), true), "Yesterday");
}

TEST(DateHelper, parts_of_a_date_are_those_of_the_place) {
    struct Row {
        const char* locale;
        const char* zone;
        const char* date;
        int parts[8];  // year, month, day, hour, minute, second, weekday, week of the month
    };
    const Row rows[] = {
        {"en_US", "Asia/Shanghai", "2026-11-23 18:20:02 8", {2026, 11, 23, 18, 20, 2, 2, 4}},
        {"en_US", "America/New_York", "2026-01-01 03:04:05 0", {2025, 12, 31, 22, 4, 5, 4, 5}},
        {"en_US", "UTC", "2026-11-01 00:00:00 0", {2026, 11, 1, 0, 0, 0, 1, 1}},
        {"de_DE", "UTC", "2026-11-01 00:00:00 0", {2026, 11, 1, 0, 0, 0, 1, 0}},  // a Sunday, in the week that began in October
        {"de_DE", "UTC", "2026-11-02 00:00:00 0", {2026, 11, 2, 0, 0, 0, 2, 1}},
        {"zh_CN", "Asia/Shanghai", "2026-11-30 23:59:59 8", {2026, 11, 30, 23, 59, 59, 2, 6}},
        {"en_US", "UTC", "2026-11-30 23:59:59 0", {2026, 11, 30, 23, 59, 59, 2, 5}},
        {"en_US", "UTC", "1969-12-31 23:59:59 0", {1969, 12, 31, 23, 59, 59, 4, 5}},
        {"th_TH", "Asia/Bangkok", "2026-11-23 18:20:02 7", {2569, 11, 23, 18, 20, 2, 2, 4}},
        {"en_US", "Europe/Berlin", "2026-03-29 02:00:00 1", {2026, 3, 29, 3, 0, 0, 1, 5}},
    };
    for (const auto& [locale, zone, date, parts] : rows) {
        const DateHelper helper({locale, zone}, currentMoment);
        const Moment moment = at(date);
        const int seen[] = {helper.year(moment),   helper.month(moment),  helper.day(moment),     helper.hour(moment),
                            helper.minute(moment), helper.second(moment), helper.weekday(moment), helper.weekNumber(moment)};
        for (std::size_t i = 0; i < std::size(seen); ++i) EXPECT_EQ(seen[i], parts[i]) << date << ", " << locale << ", part " << i;
    }
}

TEST(DateHelper, days_and_weeks_begin_and_end_as_the_place_counts_them) {
    struct Row {
        const char* locale;
        const char* zone;
        const char* date;
        const char* day;
        const char* week;
        const char* weekAfter;
    };
    const Row rows[] = {
        {"en_US", "Asia/Shanghai", "2026-11-23 18:20:02 8", "2026-11-23 00:00:00 8", "2026-11-22 00:00:00 8", "2026-11-29 00:00:00 8"},
        {"de_DE", "Asia/Shanghai", "2026-11-22 18:20:02 8", "2026-11-22 00:00:00 8", "2026-11-16 00:00:00 8", "2026-11-23 00:00:00 8"},
        {"en_US", "Asia/Shanghai", "2026-11-22 00:00:00 8", "2026-11-22 00:00:00 8", "2026-11-22 00:00:00 8", "2026-11-29 00:00:00 8"},
        {"ar_EG", "UTC", "2026-11-23 18:20:02 0", "2026-11-23 00:00:00 0", "2026-11-21 00:00:00 0", "2026-11-28 00:00:00 0"},
        {"de_DE", "UTC", "2026-01-01 12:00:00 0", "2026-01-01 00:00:00 0", "2025-12-29 00:00:00 0", "2026-01-05 00:00:00 0"},
        {"en_US", "UTC", "1969-12-31 23:59:59 0", "1969-12-31 00:00:00 0", "1969-12-28 00:00:00 0", "1970-01-04 00:00:00 0"},
        {"de_DE", "Europe/Berlin", "2026-03-29 12:00:00 2", "2026-03-29 00:00:00 1", "2026-03-23 00:00:00 1", "2026-03-30 00:00:00 2"},
        {"de_DE", "Europe/Berlin", "2026-10-25 23:00:00 1", "2026-10-25 00:00:00 2", "2026-10-19 00:00:00 2", "2026-10-26 00:00:00 1"},
        {"en_US", "America/Sao_Paulo", "2018-11-04 12:00:00 -2", "2018-11-04 01:00:00 -2", "2018-11-04 01:00:00 -2",
         "2018-11-11 00:00:00 -2"},
        {"en_US", "America/Sao_Paulo", "2018-11-03 12:00:00 -3", "2018-11-03 00:00:00 -3", "2018-10-28 00:00:00 -3",
         "2018-11-04 01:00:00 -2"},
        {"de_DE", "Pacific/Apia", "2011-12-29 12:00:00 -10", "2011-12-29 00:00:00 -10", "2011-12-26 00:00:00 -10",
         "2012-01-02 00:00:00 14"},
        {"en_US", "Pacific/Apia", "2011-12-29 12:00:00 -10", "2011-12-29 00:00:00 -10", "2011-12-25 00:00:00 -10",
         "2012-01-01 00:00:00 14"},
        {"en_US", "America/Havana", "2026-11-01 12:00:00 -5", "2026-11-01 00:00:00 -4", "2026-11-01 00:00:00 -4", "2026-11-08 00:00:00 -5"},
    };
    for (const auto& [locale, zone, date, day, week, weekAfter] : rows) {
        const DateHelper helper({locale, zone}, currentMoment);
        EXPECT_EQ(helper.beginningOfDay(at(date)), at(day)) << date << ", " << locale;
        EXPECT_EQ(helper.beginningOfDay(at(date) + std::chrono::microseconds(123457)), at(day)) << date << ", " << locale;
        EXPECT_EQ(helper.beginningOfWeek(at(date)), at(week)) << date << ", " << locale;
        EXPECT_EQ(helper.endOfWeek(at(date)), at(weekAfter) - std::chrono::microseconds(1)) << date << ", " << locale;
    }
}

TEST(DateHelper, stamps_are_whole_milliseconds_rounded_down) {
    const std::pair<std::int64_t, std::int64_t> rows[] = {
        {0, 0}, {999, 0}, {1000, 1}, {-1, -1}, {-1000, -1}, {-1001, -2}, {1795458002123999, 1795458002123}};
    for (const auto& [microseconds, stamp] : rows)
        EXPECT_EQ(DateHelper::utcTimeStamp(Moment(std::chrono::microseconds(microseconds))), stamp);
}

TEST(DateHelper, the_shared_formatter_keeps_the_last_format) {
    DateHelper helper({"en_US", "Asia/Shanghai"}, stoppedAt("2026-11-23 18:20:02 8"));
    const Moment date = at("2026-11-20 09:05:07 8");
    const auto format = [&] { return helper.sharedDateFormatter().dateFormat(); };
    EXPECT_EQ(helper.string(date), "2026-11-20 09:05:07");
    EXPECT_EQ(format(), DateHelper::dbFormatString);
    EXPECT_EQ(helper.stringFromDate(date, DateHelper::timeFormatString), "09:05:07");
    EXPECT_EQ(format(), "HH:mm:ss");
    EXPECT_EQ(helper.stringWithFormat(date, "d.M."), "20.11.");
    EXPECT_EQ(format(), "d.M.");
    EXPECT_EQ(helper.dateFromString("2026-11-20", DateHelper::dateFormatString), at("2026-11-20 00:00:00 8"));
    EXPECT_EQ(format(), "yyyy-MM-dd");
    EXPECT_EQ(helper.stringForDisplayFromDate(date), "Friday");
    EXPECT_EQ(format(), "EEEE");
    (void)helper.daysAgo(date);
    (void)helper.stringDaysAgoAgainstMidnight(date, false);
    (void)helper.beginningOfWeek(date);
    EXPECT_EQ(helper.stringWithFormatISO8601(date), "2026-11-20T09:05:07+08:00");
    EXPECT_EQ(format(), "EEEE") << "none of these writes with it";
    EXPECT_EQ(helper.stringWithDateStyle(date, DateFormatter::Style::Medium, DateFormatter::Style::None), "Nov 20, 2026");
    EXPECT_EQ(format(), "MMM d, y");
    EXPECT_EQ(helper.dateFromString("2026-11-20 09:05:07"), date);
    EXPECT_EQ(helper.stringFromDate(date), "2026-11-20 09:05:07");
    EXPECT_FALSE(helper.dateFromString("2026-11-20")) << "half of it";
}

TEST(DateHelper, iso_form_is_the_same_everywhere) {
    for (const char* locale : {"en_US", "zh_CN", "ar_EG", "th_TH"}) {
        EXPECT_EQ(DateHelper({locale, "America/New_York"}, currentMoment).stringWithFormatISO8601(at("2026-07-01 12:00:00 0")),
                  "2026-07-01T08:00:00-04:00");
        EXPECT_EQ(DateHelper({locale, "UTC"}, currentMoment).stringWithFormatISO8601(at("1969-12-31 23:59:59 0")), "1969-12-31T23:59:59Z");
        EXPECT_EQ(DateHelper({locale, "Asia/Kathmandu"}, currentMoment).stringWithFormatISO8601(at("2026-07-01 12:00:00 0")),
                  "2026-07-01T17:45:00+05:45");
    }
}

TEST(DateHelper, the_ends_of_time_are_dates_as_well) {
    DateHelper helper({"en_US", "Asia/Shanghai"}, stoppedAt("2026-11-23 18:20:02 8"));
    EXPECT_EQ(helper.sharedCalendar().addingDays(Moment::max(), 400), Moment::max());
    EXPECT_EQ(helper.sharedCalendar().addingDays(Moment::min(), -400), Moment::min());
    EXPECT_EQ(helper.sharedCalendar().addingMonths(Moment(), 1LL << 40), Moment::max());
    const Moment fine = at("2026-11-23 18:20:02 8") + std::chrono::microseconds(123457);
    EXPECT_EQ(helper.sharedCalendar().addingDays(fine, 1), fine + std::chrono::days(1)) << "to the microsecond";
    for (const Moment end : {Moment::min(), Moment::max()}) {
        EXPECT_EQ(helper.daysAgo(end) > 0, end < Moment());
        EXPECT_EQ(helper.daysAgoAgainstMidnight(end) > 0, end < Moment());
        EXPECT_LE(helper.beginningOfWeek(end), helper.beginningOfDay(end));
        EXPECT_GE(helper.endOfWeek(end), end);
        EXPECT_FALSE(helper.stringForDisplayFromDate(end, true, true).empty());
    }
}

TEST(DateHelper, there_is_one_for_the_process_and_parts_are_for_any_thread) {
    DateHelper::initializeStatics();
    std::vector<DateHelper*> seen(4);
    std::vector<int> wrong(4);
    {
        std::vector<std::jthread> threads;
        for (std::size_t i = 0; i < seen.size(); ++i) {
            threads.emplace_back([&, i] {
                seen[i] = &DateHelper::shared();
                const Moment date = at("2026-11-23 12:00:00 0") + std::chrono::days(i);
                for (int k = 0; k < 200; ++k) {
                    const DateHelper& helper = *seen[i];
                    wrong[i] += helper.day(date) < 22 || helper.beginningOfDay(date) > date || helper.endOfWeek(date) < date ? 1 : 0;
                }
            });
        }
    }
    for (std::size_t i = 0; i < seen.size(); ++i) EXPECT_TRUE(seen[i] == &DateHelper::shared() && wrong[i] == 0);
    EXPECT_EQ(DateHelper::shared().daysAgo(currentMoment()), 0);
}

}  // namespace
}  // namespace halvane::util
