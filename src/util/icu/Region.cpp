#include "util/icu/Region.h"

#include "util/icu/Icu.h"

#include <unicode/timezone.h>

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <mutex>

namespace halvane::util {

namespace {

/// What the C library would take for times; the program need not have called setlocale.
std::string localeOfEnvironment() {
    for (const char* variable : {"LC_ALL", "LC_TIME", "LANG"}) {
        const char* value = std::getenv(variable);
        if (value != nullptr && *value != '\0') return value;
    }
    return "C";
}

/// "zh_CN.UTF-8" as "zh_CN", "sr_RS@latin" as "sr_Latn_RS".
std::string icuNameOf(const std::string& locale) {
    constexpr std::pair<const char*, const char*> kScripts[] = {{"@latin", "_Latn"}, {"@cyrillic", "_Cyrl"}, {"@devanagari", "_Deva"}};
    std::string name = locale.substr(0, locale.find_first_of(".@"));
    if (name.empty() || name == "C" || name == "POSIX") return "en_US_POSIX";
    for (const auto& [modifier, script] : kScripts) {
        if (locale.ends_with(modifier)) name.insert(std::min(name.find('_'), name.size()), script);
    }
    return icu::Locale::createCanonical(name.c_str()).getName();
}

/// TZ may name a zone by the path of its file, or of a link to it, which ICU does not understand. Empty when it does not.
std::string zoneByPath() {
    const char* value = std::getenv("TZ");
    const std::string path = value == nullptr ? "" : value + (*value == ':' ? 1 : 0);
    std::error_code error;
    std::string name = path.starts_with('/') ? std::filesystem::canonical(path, error).string() : "";
    for (const std::string_view prefix : {"/usr/share/zoneinfo/", "posix/", "right/"}) {
        if (name.starts_with(prefix)) name.erase(0, prefix.size());
    }
    return name;
}

/// Seconds that local time is ahead of UTC, by the C library.
long aheadOfUtc(std::time_t now) {
    std::tm parts{};
    tzset();
    localtime_r(&now, &parts);
    return parts.tm_gmtoff;
}

bool isZoneAhead(const icu::UnicodeString& name, std::time_t now, long seconds) {
    constexpr int kMilliseconds = 1000;
    const std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::createTimeZone(name));
    std::int32_t raw = 0;
    std::int32_t saving = 0;
    UErrorCode status = U_ZERO_ERROR;
    zone->getOffset(static_cast<double>(now) * kMilliseconds, 0, raw, saving, status);
    return U_SUCCESS(status) && *zone != icu::TimeZone::getUnknown() && (raw + saving) / kMilliseconds == seconds;
}

icu::UnicodeString detectedZone() {
    if (const std::string name = zoneByPath(); !name.empty()) return unicodeOf(name);
    // What ICU finds it keeps in one place, unguarded. It looks by itself once, for its default zone: then that is over.
    static std::mutex detecting;
    const std::lock_guard lock(detecting);
    delete icu::TimeZone::createDefault();
    const std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::detectHostTimeZone());
    icu::UnicodeString name;
    return zone->getID(name);
}

std::string zoneOfComputer() {
    const icu::UnicodeString name = detectedZone();
    // A rule such as "JST-9" is no name that a zone could be had by. What the C library makes of it now is nearer than UTC.
    const std::time_t now = std::time(nullptr);
    const long ahead = aheadOfUtc(now);
    if (isZoneAhead(name, now, ahead)) return utf8Of(name);
    const long minutes = std::labs(ahead) / 60;
    return fmt::format("GMT{}{:02}:{:02}", ahead < 0 ? '-' : '+', minutes / 60, minutes % 60);
}

}  // namespace

Region Region::current() { return {icuNameOf(localeOfEnvironment()), zoneOfComputer()}; }

Region Region::withGregorianCalendar() const {
    UErrorCode status = U_ZERO_ERROR;
    icu::Locale with(locale.c_str());
    with.setKeywordValue("calendar", "gregorian", status);
    with.setKeywordValue("numbers", "latn", status);
    return {with.getName(), timeZone};
}

}  // namespace halvane::util
