#include "util/icu/UnicodeText.h"

#include "util/icu/Icu.h"

#include <unicode/uchar.h>

namespace halvane::util {

std::u16string utf16Of(std::string_view text) {
    const icu::UnicodeString unicode = unicodeOf(text);
    return {unicode.getBuffer(), static_cast<std::size_t>(unicode.length())};
}

bool isWhiteSpace(std::string_view text) { return consistsOf(text, u_isUWhiteSpace); }

}  // namespace halvane::util
