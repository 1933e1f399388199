#include "util/icu/NumberText.h"

#include "util/Text.h"
#include "util/icu/Icu.h"

#include <unicode/uchar.h>

namespace halvane::util {

bool NumberText::isNum(std::string_view text) { return consistsOf(text, u_isdigit); }

bool NumberText::isPureInt(std::string_view text) { return isPureFloat(text) && text.find_first_of(".eE") == std::string_view::npos; }

bool NumberText::isPureFloat(std::string_view text) {
    const auto leading = leadingNumber(text);
    return leading && trimmed(leading->rest).empty();
}

}  // namespace halvane::util
