#pragma once

#include "util/icu/Moment.h"
#include "util/icu/Region.h"
#include "util/icu/UserCalendar.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace halvane::util {

/// The days and months around now as short texts, in local time, the Gregorian calendar and the digits 0 to 9. Any thread.
class FetchDateString {
public:
    explicit FetchDateString(const Region& region = Region::current(), Clock clock = currentMoment);

    // Days, as "20261123".
    [[nodiscard]] std::string getCurrentDayDateStr() const;
    [[nodiscard]] std::string getYesterdayDateStr() const;
    [[nodiscard]] std::string getTheDayBeforeYesterdayDateStr() const;
    /// `days` from today on, back when negative.
    [[nodiscard]] std::string getTheDayAfterNumberOfDay(std::int64_t days) const;
    /// Today in a format of the Unicode kind; words are in the region's language.
    [[nodiscard]] std::string getCurrentDayDateStrWithFormat(std::string_view format) const;

    // Months, as "202611".
    [[nodiscard]] std::string getCurrentMonthDateStr() const;
    [[nodiscard]] std::string getLastMonthDateStr() const;
    [[nodiscard]] std::string getMonthBeforeLastMonthStr() const;
    /// As "2026-11".
    [[nodiscard]] std::string getCurrentMonthFormatDateStr() const;
    /// As "2026".
    [[nodiscard]] std::string getCurrentYearDateStr() const;

private:
    [[nodiscard]] std::string month(std::int64_t monthsFromNow) const;
    [[nodiscard]] std::string text(Moment moment, std::string_view format) const;

    const Region region_;
    const Clock clock_;
    const UserCalendar calendar_;
};

}  // namespace halvane::util
