#pragma once

#include "util/Bytes.h"

#include <optional>
#include <string>

namespace halvane::util {

/// Texts in other encodings. Any thread.
struct TextEncoding {
    /// The bytes of `text` in the encoding of that name, as IANA registers it: "UTF-8", "GB18030", "UTF-16LE". An absent
    /// text gives the bytes of the empty one. No bytes when the encoding is not known or has no form for a character.
    static Bytes notNulldataUsingEncoding(const std::optional<std::string>& text, const std::string& encoding);
};

}  // namespace halvane::util
