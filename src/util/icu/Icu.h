#pragma once

#include "util/icu/Moment.h"
#include "util/icu/Region.h"

#include <unicode/calendar.h>
#include <unicode/locid.h>
#include <unicode/unistr.h>

#include <memory>
#include <string>
#include <string_view>

namespace halvane::util {

/// Between our texts and moments and ICU's; for this folder's sources only.

/// What is no UTF-8 becomes U+FFFD, and so does a text that is too long for ICU, beyond 2 GiB.
icu::UnicodeString unicodeOf(std::string_view text);
std::string utf8Of(const icu::UnicodeString& text);

/// Whether every character is one of a kind; so it is in an empty text.
bool consistsOf(std::string_view text, UBool (*isOfTheKind)(UChar32));

UDate dateOf(Moment moment);
/// The nearest moment where ICU reaches further than we do.
Moment momentOf(UDate date);

/// The calendar of the region, set to no particular date. A wall time that a change of the clocks skips means the first
/// moment after the gap, and one that comes twice means the first: a day begins somewhere in every zone.
std::unique_ptr<icu::Calendar> calendarOf(const icu::Locale& locale, const std::string& timeZone);

}  // namespace halvane::util
