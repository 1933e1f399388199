#pragma once

#include <cstdint>
#include <string>

namespace halvane::util {

/// Sizes as people read them: base 1024, two decimals, "KB" up to "GB" and nothing below or beyond. Any thread.
struct SizeText {
    /// A count below 1 MiB, negative ones included, is told in KB; so 1048575 bytes read "1024.00KB".
    static std::string converBytesToSize(std::int64_t bytes);

    /// `bytes` is decimal text, read as far as it is a number; one that is too large counts as the largest.
    static std::string converStringToSize(const std::string& bytes);
};

}  // namespace halvane::util
