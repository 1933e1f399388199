#pragma once

#include <string_view>

namespace halvane::util {

/// Whether a text is a number. Any thread.
struct NumberText {
    /// Decimal digits of any script, and nothing else; the empty text is a number, too.
    static bool isNum(std::string_view text);
    /// One integer: digits 0 to 9, perhaps with a sign, of any size. White space around it does not count.
    static bool isPureInt(std::string_view text);
    /// One floating number as "-1.5e3"; an integer is one as well. White space around it does not count.
    static bool isPureFloat(std::string_view text);
};

}  // namespace halvane::util
