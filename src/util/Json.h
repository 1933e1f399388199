#pragma once

#include "util/Bytes.h"
#include "util/Result.h"
#include "util/Value.h"

#include <optional>
#include <string>

namespace halvane::util {

/// JSON by RFC 8259, UTF-8 only. The door to the JSON library. Any thread.
struct Json {
    /// Any JSON value is accepted at the top, texts and numbers too. Errors: not JSON, invalid UTF-8,
    /// nested deeper than 512, more than one value. A later equal key replaces an earlier one. A number
    /// that no 64-bit integer holds becomes a double.
    static Result<Value> decode(const Bytes& bytes);

    /// One line without spaces, keys in the dictionary's order. Bytes are written as base64 text,
    /// dates as ISO 8601, those beyond the year 9999 as null;
    /// invalid UTF-8 in a text is replaced by U+FFFD; numbers that are not finite become null.
    static Bytes encode(const Value& value);

    /// A date as `encode` writes it, without quotes; absent beyond the year 9999.
    static std::optional<std::string> dateText(const Value::Date& date);
};

}  // namespace halvane::util
