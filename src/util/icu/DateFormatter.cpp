#include "util/icu/DateFormatter.h"

#include "util/icu/Icu.h"

#include <unicode/smpdtfmt.h>

#include <stdexcept>

namespace halvane::util {

struct DateFormatter::Format {
    icu::Locale locale;
    std::string timeZone;
    std::unique_ptr<icu::SimpleDateFormat> format;

    void use(std::unique_ptr<icu::SimpleDateFormat> next) {
        next->adoptCalendar(calendarOf(locale, timeZone).release());
        UErrorCode status = U_ZERO_ERROR;
        next->setBooleanAttribute(UDAT_PARSE_PARTIAL_LITERAL_MATCH, false, status);  // or "." would do for "-"
        format = std::move(next);
    }

    /// The moment when `text` is read to its end into `calendar`.
    [[nodiscard]] std::optional<UDate> read(const icu::UnicodeString& text, icu::Calendar& calendar) const {
        calendar.clear();
        icu::ParsePosition position(0);
        format->parse(text, calendar, position);
        UErrorCode status = U_ZERO_ERROR;
        const UDate date = calendar.getTime(status);
        const bool whole = position.getErrorIndex() < 0 && position.getIndex() == text.length();
        return whole && U_SUCCESS(status) ? std::optional(date) : std::nullopt;
    }
};

namespace {

constexpr std::size_t kLongestDate = 1000;  // bytes

icu::DateFormat::EStyle styleOf(DateFormatter::Style style) {
    switch (style) {
        case DateFormatter::Style::None:
            return icu::DateFormat::kNone;
        case DateFormatter::Style::Short:
            return icu::DateFormat::kShort;
        case DateFormatter::Style::Medium:
            return icu::DateFormat::kMedium;
        case DateFormatter::Style::Long:
            return icu::DateFormat::kLong;
        case DateFormatter::Style::Full:
            return icu::DateFormat::kFull;
    }
    return icu::DateFormat::kNone;
}

}  // namespace

DateFormatter::DateFormatter(const Region& region, std::string_view dateFormat)
    : format_(std::make_unique<Format>(Format{icu::Locale(region.locale.c_str()), region.timeZone, nullptr})) {
    setDateFormat(dateFormat);
}

DateFormatter::~DateFormatter() = default;

void DateFormatter::setDateFormat(std::string_view dateFormat) {
    // A new one each time, for that of a style may write its numbers in a way of its own, whatever pattern it gets later.
    UErrorCode status = U_ZERO_ERROR;
    auto format = std::make_unique<icu::SimpleDateFormat>(unicodeOf(dateFormat), format_->locale, status);
    if (U_FAILURE(status)) throw std::runtime_error(std::string("no date format: ") + u_errorName(status));
    format_->use(std::move(format));
}

void DateFormatter::setStyles(Style date, Style time) {
    if (date == Style::None && time == Style::None) {
        setDateFormat({});  // where ICU would choose for itself
        return;
    }
    std::unique_ptr<icu::DateFormat> made(icu::DateFormat::createDateTimeInstance(styleOf(date), styleOf(time), format_->locale));
    if (auto* format = dynamic_cast<icu::SimpleDateFormat*>(made.get())) {
        (void)made.release();
        format_->use(std::unique_ptr<icu::SimpleDateFormat>(format));
    }
}

std::string DateFormatter::dateFormat() const {
    icu::UnicodeString pattern;
    return utf8Of(format_->format->toPattern(pattern));
}

std::string DateFormatter::string(Moment moment) const {
    icu::UnicodeString text;
    UErrorCode status = U_ZERO_ERROR;
    format_->format->format(dateOf(moment), text, nullptr, status);
    return U_SUCCESS(status) ? utf8Of(text) : std::string();
}

std::optional<Moment> DateFormatter::date(std::string_view text) const {
    // ICU takes minutes to find out that some millions of digits are no year.
    if (text.size() > kLongestDate) return std::nullopt;
    const icu::UnicodeString unicode = unicodeOf(text);
    // A strict calendar refuses the 30th of February, but also the hour that the change of the clocks skips. UTC skips none.
    const auto everyHour = calendarOf(format_->locale, "UTC");
    everyHour->setLenient(false);
    if (!format_->read(unicode, *everyHour)) return std::nullopt;
    const auto date = format_->read(unicode, *calendarOf(format_->locale, format_->timeZone));
    return date ? std::optional(momentOf(*date)) : std::nullopt;
}

}  // namespace halvane::util
