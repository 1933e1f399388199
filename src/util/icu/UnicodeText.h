#pragma once

#include <string>
#include <string_view>

namespace halvane::util {

/// Questions about a text's characters as Unicode sees them. Texts are UTF-8; what is not stands for U+FFFD. Any thread.

/// Its UTF-16 code units.
std::u16string utf16Of(std::string_view text);
/// Whether it is nothing but white space of any script, line ends among it; so is the empty text.
bool isWhiteSpace(std::string_view text);

}  // namespace halvane::util
