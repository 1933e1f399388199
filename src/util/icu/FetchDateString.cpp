#include "util/icu/FetchDateString.h"

#include "util/icu/DateFormatter.h"

namespace halvane::util {

FetchDateString::FetchDateString(const Region& region, Clock clock)
    : region_(region.withGregorianCalendar()), clock_(std::move(clock)), calendar_(region_) {}

std::string FetchDateString::getCurrentDayDateStr() const { return getTheDayAfterNumberOfDay(0); }

std::string FetchDateString::getYesterdayDateStr() const { return getTheDayAfterNumberOfDay(-1); }

std::string FetchDateString::getTheDayBeforeYesterdayDateStr() const { return getTheDayAfterNumberOfDay(-2); }

std::string FetchDateString::getTheDayAfterNumberOfDay(std::int64_t days) const {
    return text(calendar_.addingDays(clock_(), days), "yyyyMMdd");
}

std::string FetchDateString::getCurrentDayDateStrWithFormat(std::string_view format) const { return text(clock_(), format); }

std::string FetchDateString::getCurrentMonthDateStr() const { return month(0); }

std::string FetchDateString::getLastMonthDateStr() const { return month(-1); }

std::string FetchDateString::getMonthBeforeLastMonthStr() const { return month(-2); }

std::string FetchDateString::getCurrentMonthFormatDateStr() const { return text(clock_(), "yyyy-MM"); }

std::string FetchDateString::getCurrentYearDateStr() const { return text(clock_(), "yyyy"); }

std::string FetchDateString::month(std::int64_t monthsFromNow) const {
    return text(calendar_.addingMonths(clock_(), monthsFromNow), "yyyyMM");
}

std::string FetchDateString::text(Moment moment, std::string_view format) const { return DateFormatter(region_, format).string(moment); }

}  // namespace halvane::util
