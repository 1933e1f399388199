#include "util/icu/RelativeDays.h"

#include "util/icu/Icu.h"

#include <unicode/reldatefmt.h>

namespace halvane::util {

namespace {

std::string dayOf(const Region& region, UDateDirection direction, const char* english) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::RelativeDateTimeFormatter formatter(icu::Locale(region.locale.c_str()), nullptr, UDAT_STYLE_LONG,
                                                   UDISPCTX_CAPITALIZATION_FOR_BEGINNING_OF_SENTENCE, status);
    icu::UnicodeString day;
    formatter.format(direction, UDAT_ABSOLUTE_DAY, day, status);
    return U_SUCCESS(status) ? utf8Of(day) : english;
}

}  // namespace

std::string RelativeDays::today(const Region& region) { return dayOf(region, UDAT_DIRECTION_THIS, "Today"); }

std::string RelativeDays::yesterday(const Region& region) { return dayOf(region, UDAT_DIRECTION_LAST, "Yesterday"); }

}  // namespace halvane::util
