#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace halvane::test {

/// `count` times the same characters.
inline std::string times(std::size_t count, std::string_view characters) {
    std::string text;
    text.reserve(count * characters.size());
    for (std::size_t i = 0; i < count; ++i) text += characters;
    return text;
}

}  // namespace halvane::test
