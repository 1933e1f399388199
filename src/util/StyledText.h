#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace halvane::util {

/// Text with a look for parts of it, without knowing how it is drawn. Offsets are bytes of the UTF-8
/// text, always on a character's border.
struct StyledText {
    struct Style {
        std::optional<std::string> fontName;  ///< such as "Helvetica-Bold"; absent: the default font
        std::optional<double> fontSize;       ///< points; absent: the default size
        std::optional<double> lineSpacing;    ///< points between lines of the paragraph
        std::optional<std::string> color;     ///< "#RRGGBB"
        friend bool operator==(const Style&, const Style&) = default;
    };
    struct Run {
        std::size_t offset = 0;
        std::size_t length = 0;
        Style style;
        friend bool operator==(const Run&, const Run&) = default;
    };

    std::string text;
    std::vector<Run> runs;  ///< in the order of styling; where runs overlap, the later one wins

    /// Styles the first occurrence of `part`; nothing happens where `part` is empty or does not occur.
    void styleFirst(std::string_view part, Style style);
};

}  // namespace halvane::util
