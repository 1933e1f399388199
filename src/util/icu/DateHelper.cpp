#include "util/icu/DateHelper.h"

#include "util/icu/RelativeDays.h"

#include <fmt/format.h>

namespace halvane::util {

namespace {
constexpr int kDaysShownByName = 7;
}  // namespace

DateHelper::DateHelper(const Region& region, Clock clock)
    : region_(region), clock_(std::move(clock)), calendar_(region), formatter_(region) {}

DateHelper& DateHelper::shared() {
    static DateHelper& helper = *new DateHelper(Region::current(), currentMoment);  // outlives threads that still ask at the end
    return helper;
}

void DateHelper::initializeStatics() { (void)shared(); }

int DateHelper::daysAgo(Moment date) const { return calendar_.daysBetween(date, clock_()); }

int DateHelper::daysAgoAgainstMidnight(Moment date) {
    // The formatter is left as after any cut to the day. Midnight itself is the calendar's: a day that is written so and read
    // back may be one of another era.
    formatter_.setDateFormat(dateFormatString);
    const Moment midnight = calendar_.beginningOfDay(date);
    using Wide = std::chrono::duration<long double, std::micro>;  // the ends of time are too far apart for whole numbers
    const Wide passed = Wide(clock_().time_since_epoch()) - Wide(midnight.time_since_epoch());
    return static_cast<int>(passed / std::chrono::days(1));
}

std::string DateHelper::relativeDay(int daysAgo) const {
    if (daysAgo == 0) return RelativeDays::today(region_);
    if (daysAgo == 1) return RelativeDays::yesterday(region_);
    return fmt::format("{} days ago", daysAgo);
}

std::string DateHelper::stringDaysAgo(Moment date) const { return relativeDay(daysAgo(date)); }

std::string DateHelper::stringDaysAgoAgainstMidnight(Moment date, bool midnight) {
    return relativeDay(midnight ? daysAgoAgainstMidnight(date) : daysAgo(date));
}

int DateHelper::hour(Moment date) const { return calendar_.components(date).hour; }

int DateHelper::minute(Moment date) const { return calendar_.components(date).minute; }

int DateHelper::second(Moment date) const { return calendar_.components(date).second; }

int DateHelper::year(Moment date) const { return calendar_.components(date).year; }

int DateHelper::month(Moment date) const { return calendar_.components(date).month; }

int DateHelper::day(Moment date) const { return calendar_.components(date).day; }

int DateHelper::weekday(Moment date) const { return calendar_.components(date).weekday; }

int DateHelper::weekNumber(Moment date) const { return calendar_.components(date).weekOfMonth; }

std::int64_t DateHelper::utcTimeStamp(Moment date) {
    return std::chrono::floor<std::chrono::milliseconds>(date).time_since_epoch().count();
}

std::optional<Moment> DateHelper::dateFromString(std::string_view text) { return dateFromString(text, dbFormatString); }

std::optional<Moment> DateHelper::dateFromString(std::string_view text, std::string_view withFormat) {
    formatter_.setDateFormat(withFormat);
    return formatter_.date(text);
}

std::string DateHelper::stringFromDate(Moment date, std::string_view withFormat) {
    formatter_.setDateFormat(withFormat);
    return formatter_.string(date);
}

std::string DateHelper::stringWithFormat(Moment date, std::string_view format) { return stringFromDate(date, format); }

std::string DateHelper::string(Moment date) { return stringFromDate(date, dbFormatString); }

std::string DateHelper::stringWithDateStyle(Moment date, DateFormatter::Style dateStyle, DateFormatter::Style timeStyle) {
    formatter_.setStyles(dateStyle, timeStyle);
    return formatter_.string(date);
}

std::string DateHelper::stringWithFormatISO8601(Moment date) const {
    const Region everywhere{"en_US_POSIX", region_.timeZone};
    return DateFormatter(everywhere, "yyyy-MM-dd'T'HH:mm:ssZZZZZ").string(date);
}

std::string DateHelper::displayFormat(Moment date, bool prefixed, bool alwaysDisplayTime) const {
    const Moment now = clock_();
    if (date > calendar_.beginningOfDay(now)) return prefixed ? "'at' h:mm a" : "h:mm a";
    std::string format = prefixed ? "'on' " : "";
    if (date > calendar_.addingDays(now, -kDaysShownByName)) {
        format += "EEEE";
    } else {
        const auto yearOf = [this](Moment moment) { return calendar_.components(moment).yearOfTime; };
        format += yearOf(date) < yearOf(now) ? "MMM d, yyyy" : "MMM d";
    }
    return alwaysDisplayTime ? format + " h:mm a" : format;
}

std::string DateHelper::stringForDisplayFromDate(Moment date, bool prefixed, bool alwaysDisplayTime) {
    return stringFromDate(date, displayFormat(date, prefixed, alwaysDisplayTime));
}

Moment DateHelper::beginningOfDay(Moment date) const { return calendar_.beginningOfDay(date); }

Moment DateHelper::beginningOfWeek(Moment date) const { return calendar_.beginningOfWeek(date); }

Moment DateHelper::endOfWeek(Moment date) const { return calendar_.endOfWeek(date); }

}  // namespace halvane::util
