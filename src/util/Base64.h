#pragma once

#include "util/Bytes.h"

#include <optional>
#include <string>
#include <string_view>

namespace halvane::util {

/// RFC 4648 with padding, on one line. Any thread.
struct Base64 {
    static std::string encode(std::string_view bytes);
    /// Absent when the text is not base64.
    static std::optional<Bytes> decode(std::string_view text);
};

}  // namespace halvane::util
