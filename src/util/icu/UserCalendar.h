#pragma once

#include "util/icu/Moment.h"
#include "util/icu/Region.h"

#include <cstdint>
#include <memory>

namespace halvane::util {

/// The calendar that is usual in a region, in its time zone. Constant after construction: any thread, several at once.
///
/// Where the clocks change at midnight, a day begins with the first moment that it has. What lies beyond the reach of
/// `Moment` is the last that it reaches.
class UserCalendar {
public:
    struct Components {
        int year;        ///< of its era, where the calendar has eras
        int yearOfTime;  ///< goes on through all eras
        int month;       ///< 1 is the first
        int day;
        int hour;  ///< 0 to 23
        int minute;
        int second;
        int weekday;      ///< 1 is Sunday
        int weekOfMonth;  ///< by the region's first weekday
    };

    explicit UserCalendar(const Region& region);
    ~UserCalendar();
    UserCalendar(const UserCalendar&) = delete;
    UserCalendar& operator=(const UserCalendar&) = delete;

    [[nodiscard]] Components components(Moment moment) const;
    /// Whole days from one to the other, toward zero; negative when `to` is the earlier. A day is from a wall time to the
    /// same of the next day, however many hours lie between.
    [[nodiscard]] int daysBetween(Moment from, Moment to) const;
    /// The same wall time on another day.
    [[nodiscard]] Moment addingDays(Moment moment, std::int64_t days) const;
    /// The same day of another month, or its last.
    [[nodiscard]] Moment addingMonths(Moment moment, std::int64_t months) const;
    [[nodiscard]] Moment beginningOfDay(Moment moment) const;
    [[nodiscard]] Moment beginningOfWeek(Moment moment) const;
    /// The last moment of the week.
    [[nodiscard]] Moment endOfWeek(Moment moment) const;

private:
    struct Prototype;
    std::unique_ptr<const Prototype> prototype_;
};

}  // namespace halvane::util
