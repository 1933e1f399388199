#include "util/FileName.h"

#include <algorithm>
#include <array>

namespace halvane::util {

bool FileName::validFileName(std::string_view name) {
    constexpr std::array<std::string_view, 10> kForbidden = {"\\", "/", ":", "*", "?", "“", "”", "<", ">", "|"};
    const bool hasForbidden = std::ranges::any_of(kForbidden, [&](auto each) { return name.find(each) != std::string_view::npos; });
    return !hasForbidden && !name.starts_with('.') && !name.ends_with('.');
}

}  // namespace halvane::util
