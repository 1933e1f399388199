#include "util/icu/Icu.h"

#include <unicode/timezone.h>

#include <cmath>
#include <limits>
#include <stdexcept>

namespace halvane::util {

namespace {
constexpr double kMicrosecondsPerMillisecond = 1000.0;
constexpr double kFurthest = 0x1p63;  // microseconds
}  // namespace

icu::UnicodeString unicodeOf(std::string_view text) {
    constexpr UChar32 kReplacement = 0xFFFD;
    if (text.size() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) return {kReplacement};
    auto unicode = icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
    return unicode.isBogus() ? icu::UnicodeString(kReplacement) : unicode;  // no memory for it, which must not look like no text
}

std::string utf8Of(const icu::UnicodeString& text) {
    std::string utf8;
    return text.toUTF8String(utf8);
}

bool consistsOf(std::string_view text, UBool (*isOfTheKind)(UChar32)) {
    const icu::UnicodeString unicode = unicodeOf(text);
    for (std::int32_t i = 0; i < unicode.length(); ++i) {  // both halves of a pair give the character
        if (isOfTheKind(unicode.char32At(i)) == 0) return false;
    }
    return true;
}

UDate dateOf(Moment moment) { return static_cast<double>(moment.time_since_epoch().count()) / kMicrosecondsPerMillisecond; }

Moment momentOf(UDate date) {
    const double microseconds = std::round(date * kMicrosecondsPerMillisecond);
    if (microseconds >= kFurthest) return Moment::max();
    if (!(microseconds >= -kFurthest)) return Moment::min();
    return Moment(std::chrono::microseconds(static_cast<std::int64_t>(microseconds)));
}

std::unique_ptr<icu::Calendar> calendarOf(const icu::Locale& locale, const std::string& timeZone) {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::Calendar> calendar(
        icu::Calendar::createInstance(icu::TimeZone::createTimeZone(unicodeOf(timeZone)), locale, status));
    // For any locale and zone there is one, as long as the library has its data.
    if (U_FAILURE(status) || !calendar) throw std::runtime_error(std::string("no calendar: ") + u_errorName(status));
    calendar->setSkippedWallTimeOption(UCAL_WALLTIME_NEXT_VALID);
    calendar->setRepeatedWallTimeOption(UCAL_WALLTIME_FIRST);
    return calendar;
}

}  // namespace halvane::util
