#pragma once

#include "util/icu/Moment.h"
#include "util/icu/Region.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace halvane::util {

/// Writes and reads dates by a format of the Unicode kind ("yyyy-MM-dd"), in the words, digits, calendar and time zone
/// of a region. One thread at a time.
class DateFormatter {
public:
    /// How much of the date, or of the time, a region's own format tells.
    enum class Style { None, Short, Medium, Long, Full };

    explicit DateFormatter(const Region& region, std::string_view dateFormat = {});
    ~DateFormatter();
    DateFormatter(const DateFormatter&) = delete;
    DateFormatter& operator=(const DateFormatter&) = delete;

    void setDateFormat(std::string_view dateFormat);
    /// The region's own format of that style.
    void setStyles(Style date, Style time);
    [[nodiscard]] std::string dateFormat() const;

    /// Empty when the format has a letter without a meaning.
    [[nodiscard]] std::string string(Moment moment) const;
    /// White space at the beginning and leading zeros do not count. Absent when the text does not follow the format to its end, is longer
    /// than 1,000 bytes, or names a day or a time that no calendar has. A time that only the change of the clocks leaves out counts as the
    /// first one after the gap.
    [[nodiscard]] std::optional<Moment> date(std::string_view text) const;

private:
    struct Format;
    std::unique_ptr<Format> format_;
};

}  // namespace halvane::util
