#pragma once

#include <string>

namespace halvane::util {

/// A run of bytes of any content: bodies, files, certificates. A std::string because every
/// library we hand bytes to takes one; text is `std::string` too, so names tell which is meant.
using Bytes = std::string;

}  // namespace halvane::util
