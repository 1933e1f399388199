#pragma once

#include "util/icu/DateFormatter.h"
#include "util/icu/Moment.h"
#include "util/icu/Region.h"
#include "util/icu/UserCalendar.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace halvane::util {

/// Dates as a person reads them: how long ago, in which words, at the beginning of which day.
///
/// There is one calendar and one formatter. What is marked with "formatter" sets its format and leaves it so; it is for the
/// interface thread only. The rest is for any thread.
class DateHelper {
public:
    static constexpr std::string_view dateFormatString = "yyyy-MM-dd";
    static constexpr std::string_view timeFormatString = "HH:mm:ss";
    static constexpr std::string_view timestampFormatString = "yyyy-MM-dd HH:mm:ss";
    static constexpr std::string_view dbFormatString = timestampFormatString;

    DateHelper(const Region& region, Clock clock);
    /// The process's, of its own region and the computer's clock. It makes itself on first use, for it needs nothing of the
    /// assembly. A region that changes later does not
    /// count any more.
    static DateHelper& shared();
    /// Makes it now.
    static void initializeStatics();
    [[nodiscard]] const UserCalendar& sharedCalendar() const { return calendar_; }
    [[nodiscard]] DateFormatter& sharedDateFormatter() { return formatter_; }

    /// Whole days from the date to now; a date to come counts below 0.
    [[nodiscard]] int daysAgo(Moment date) const;
    /// The days of 86400 seconds from the date's midnight to now, cut toward 0. Formatter.
    int daysAgoAgainstMidnight(Moment date);
    /// "Today" and "Yesterday" in the region's language, else "%d days ago", by `daysAgo`.
    [[nodiscard]] std::string stringDaysAgo(Moment date) const;
    /// The same, by `daysAgoAgainstMidnight` when `midnight`. Formatter when it is.
    std::string stringDaysAgoAgainstMidnight(Moment date, bool midnight);

    [[nodiscard]] int hour(Moment date) const;
    [[nodiscard]] int minute(Moment date) const;
    [[nodiscard]] int second(Moment date) const;
    [[nodiscard]] int year(Moment date) const;
    [[nodiscard]] int month(Moment date) const;
    [[nodiscard]] int day(Moment date) const;
    /// 1 is Sunday.
    [[nodiscard]] int weekday(Moment date) const;
    /// Of the month.
    [[nodiscard]] int weekNumber(Moment date) const;
    /// Whole milliseconds since 1970, rounded down.
    [[nodiscard]] static std::int64_t utcTimeStamp(Moment date);

    /// By `dbFormatString`. Formatter. Absent when the text does not follow the format.
    std::optional<Moment> dateFromString(std::string_view text);
    std::optional<Moment> dateFromString(std::string_view text, std::string_view withFormat);
    /// Formatter. Without a format, by `dbFormatString`.
    std::string stringFromDate(Moment date, std::string_view withFormat = dbFormatString);
    std::string stringWithFormat(Moment date, std::string_view format);
    std::string string(Moment date);
    /// The region's own format of these styles. Formatter.
    std::string stringWithDateStyle(Moment date, DateFormatter::Style dateStyle, DateFormatter::Style timeStyle);
    /// As "2026-11-23T18:20:02+08:00", everywhere in the same digits and calendar.
    [[nodiscard]] std::string stringWithFormatISO8601(Moment date) const;

    /// As a list shows when something was: after this midnight the time, in the seven days before now the weekday, before
    /// that month and day, and the year when it is not this one. `alwaysDisplayTime` adds the time to all of them, and
    /// `prefixed` "at" or "on". Formatter.
    std::string stringForDisplayFromDate(Moment date, bool prefixed = false, bool alwaysDisplayTime = false);

    [[nodiscard]] Moment beginningOfDay(Moment date) const;
    /// The first moment of the first day of its week, as the region counts weeks.
    [[nodiscard]] Moment beginningOfWeek(Moment date) const;
    /// The last moment of the last day of its week.
    [[nodiscard]] Moment endOfWeek(Moment date) const;

private:
    [[nodiscard]] std::string displayFormat(Moment date, bool prefixed, bool alwaysDisplayTime) const;
    [[nodiscard]] std::string relativeDay(int daysAgo) const;

    const Region region_;
    const Clock clock_;
    const UserCalendar calendar_;
    DateFormatter formatter_;  ///< interface thread
};

}  // namespace halvane::util
