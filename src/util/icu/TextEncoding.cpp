#include "util/icu/TextEncoding.h"

#include "util/Text.h"
#include "util/icu/Icu.h"

#include <unicode/ucnv.h>

#include <algorithm>
#include <limits>
#include <memory>

namespace halvane::util {

Bytes TextEncoding::notNulldataUsingEncoding(const std::optional<std::string>& text, const std::string& encoding) {
    // To ICU no name is the encoding of the process, options may follow a comma, and a name ends with a NUL.
    if (encoding.empty() || encoding.find_first_of(std::string_view(",\0", 2)) != std::string::npos) return {};
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UConverter, void (*)(UConverter*)> converter(ucnv_open(encoding.c_str(), &status), ucnv_close);
    // ICU's own would leave out characters that nobody sees, such as joiners; this one lets each error stand.
    const auto stop = [](const void*, UConverterFromUnicodeArgs*, const UChar*, std::int32_t, UChar32, UConverterCallbackReason,
                         UErrorCode*) {};
    ucnv_setFromUCallBack(converter.get(), stop, nullptr, nullptr, nullptr, &status);
    const std::string present = text.value_or("");
    const bool tooLong = present.size() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max());
    if (U_FAILURE(status) || tooLong || !isValidUtf8(present)) return {};
    const icu::UnicodeString unicode = unicodeOf(present);
    const std::int32_t size = unicode.extract(nullptr, 0, converter.get(), status);
    if (status == U_BUFFER_OVERFLOW_ERROR) status = U_ZERO_ERROR;
    Bytes bytes(static_cast<std::size_t>(std::max(size, 0)), '\0');
    unicode.extract(bytes.data(), size, converter.get(), status);
    return U_SUCCESS(status) ? bytes : Bytes();
}

}  // namespace halvane::util
