#pragma once

#include <string>

namespace halvane::util {

/// What dates follow of a person's settings.
struct Region {
    std::string locale;    ///< language and place as ICU names them: "zh_CN", "en_US_POSIX"
    std::string timeZone;  ///< as in the zone database: "Asia/Shanghai"; one that it does not know counts as UTC

    /// This process's: LC_ALL, LC_TIME or LANG, and TZ or else the computer's zone. What names no zone that is known, such
    /// as the rule "JST-9", counts as its distance from UTC at this moment. Any thread.
    static Region current();

    /// The same place and zone, but with the Gregorian calendar and the digits 0 to 9, whatever is usual there.
    [[nodiscard]] Region withGregorianCalendar() const;
};

}  // namespace halvane::util
