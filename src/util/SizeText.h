#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace halvane::util {

/// Sizes as people read them: base 1024, two decimals, "KB" up to "GB" and nothing below or beyond; and rates read back.
/// Any thread.
struct SizeText {
    /// A count below 1 MiB, negative ones included, is told in KB; so 1048575 bytes read "1024.00KB".
    static std::string converBytesToSize(std::int64_t bytes);

    /// `bytes` is decimal text, read as far as it is a number; one that is too large counts as the largest.
    static std::string converStringToSize(const std::string& bytes);

    /// As `converBytesToSize`, fractions of a byte included; "--" for what is not a number.
    static std::string formatSize(double bytes);
    /// `bytes` is read as far as it is a decimal number; "--" when it does not begin with one.
    static std::string formatSize(std::string_view bytes);

    /// The bytes of a rate such as "12.5KB/s": the number before the "/" with its last two characters taken off, times what
    /// "kB", "KB", "MB" or "GB" at its end says. Two characters go whatever the unit is, so that "512B/s" counts 51; with
    /// fewer than two it is 0. The number is read with the precision of a `float`; one below 0 counts as 0, one that is too
    /// large as the largest.
    static std::uint64_t formateRate(std::string_view rate);
};

}  // namespace halvane::util
