#pragma once

#include <optional>
#include <string>

namespace halvane::qt {

/// Before the application object is made, because that aborts the program where it finds no display.
/// Main thread, no other threads yet: both read the environment, and the second writes it.

/// Why no window could be shown here, as a sentence for the person; absent when one could.
[[nodiscard]] std::optional<std::string> displayProblem();

/// Prefers X11 wherever one answers, since only there can a window be ordered behind others and be
/// centred. A platform that the person chose stays.
void choosePlatform();

}  // namespace halvane::qt
