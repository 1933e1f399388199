#pragma once

namespace halvane::systools {

/// How a company network is reached.
enum class Medium { Wifi, Wired };

}  // namespace halvane::systools
