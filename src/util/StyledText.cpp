#include "util/StyledText.h"

#include <utility>

namespace halvane::util {

void StyledText::styleFirst(std::string_view part, Style style) {
    if (part.empty()) return;
    if (const auto offset = text.find(part); offset != std::string::npos) {
        runs.push_back({offset, part.size(), std::move(style)});
    }
}

}  // namespace halvane::util
