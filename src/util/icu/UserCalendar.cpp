#include "util/icu/UserCalendar.h"

#include "util/icu/Icu.h"

namespace halvane::util {

/// Reading from an ICU calendar changes it, so that each operation works on a copy of this.
struct UserCalendar::Prototype {
    std::unique_ptr<icu::Calendar> calendar;

    [[nodiscard]] std::unique_ptr<icu::Calendar> at(Moment moment) const {
        std::unique_ptr<icu::Calendar> copy(calendar->clone());
        UErrorCode status = U_ZERO_ERROR;
        copy->setTime(dateOf(moment), status);
        return copy;
    }
};

namespace {

constexpr int kDaysOfWeek = 7;
constexpr std::int64_t kMostDays = 220'000'000;  // 600,000 years
constexpr std::int64_t kMostMonths = 8'000'000;

Moment momentOf(const icu::Calendar& calendar, Moment whenThereIsNone) {
    UErrorCode status = U_ZERO_ERROR;
    const UDate date = calendar.getTime(status);
    return U_SUCCESS(status) ? util::momentOf(date) : whenThereIsNone;
}

/// More than `most` leads from any moment beyond all others; some calendars would walk there step by step.
Moment adding(icu::Calendar& calendar, UCalendarDateFields field, std::int64_t amount, std::int64_t most) {
    const Moment furthest = amount < 0 ? Moment::min() : Moment::max();
    if (amount < -most || amount > most) return furthest;
    UErrorCode status = U_ZERO_ERROR;
    calendar.add(field, static_cast<std::int32_t>(amount), status);
    return U_SUCCESS(status) ? momentOf(calendar, furthest) : furthest;
}

}  // namespace

UserCalendar::UserCalendar(const Region& region)
    : prototype_(std::make_unique<Prototype>(Prototype{calendarOf(icu::Locale(region.locale.c_str()), region.timeZone)})) {}

UserCalendar::~UserCalendar() = default;

UserCalendar::Components UserCalendar::components(Moment moment) const {
    const auto calendar = prototype_->at(moment);
    const auto get = [&](UCalendarDateFields field) {
        UErrorCode status = U_ZERO_ERROR;
        return calendar->get(field, status);
    };
    return {get(UCAL_YEAR),   get(UCAL_EXTENDED_YEAR), get(UCAL_MONTH) + 1,   get(UCAL_DATE),         get(UCAL_HOUR_OF_DAY),
            get(UCAL_MINUTE), get(UCAL_SECOND),        get(UCAL_DAY_OF_WEEK), get(UCAL_WEEK_OF_MONTH)};
}

int UserCalendar::daysBetween(Moment from, Moment to) const {
    UErrorCode status = U_ZERO_ERROR;
    return prototype_->at(from)->fieldDifference(dateOf(to), UCAL_DATE, status);
}

Moment UserCalendar::addingDays(Moment moment, std::int64_t days) const {
    return adding(*prototype_->at(moment), UCAL_DATE, days, kMostDays);
}

Moment UserCalendar::addingMonths(Moment moment, std::int64_t months) const {
    return adding(*prototype_->at(moment), UCAL_MONTH, months, kMostMonths);
}

Moment UserCalendar::beginningOfDay(Moment moment) const {
    const auto calendar = prototype_->at(moment);
    for (const auto field : {UCAL_HOUR_OF_DAY, UCAL_MINUTE, UCAL_SECOND, UCAL_MILLISECOND}) calendar->set(field, 0);
    return momentOf(*calendar, moment);
}

Moment UserCalendar::beginningOfWeek(Moment moment) const {
    UErrorCode status = U_ZERO_ERROR;
    const int daysIn = components(moment).weekday - prototype_->calendar->getFirstDayOfWeek(status);
    return beginningOfDay(addingDays(moment, -((daysIn + kDaysOfWeek) % kDaysOfWeek)));
}

Moment UserCalendar::endOfWeek(Moment moment) const {
    // Seven days may lead beyond the first day of the next week, when a place left a day out.
    const Moment next = beginningOfWeek(addingDays(beginningOfWeek(moment), kDaysOfWeek));
    return next > moment ? next - Moment::duration(1) : Moment::max();
}

}  // namespace halvane::util
