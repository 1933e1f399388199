#pragma once

#include <string_view>

namespace halvane::util {

/// Names that a person gives to files. Any thread.
struct FileName {
    /// Whether it may name a file: none of `\/:*?“”<>|` in it, no "." at its beginning or its end. The plain double quote is
    /// allowed, and the empty name is as well.
    static bool validFileName(std::string_view name);
};

}  // namespace halvane::util
