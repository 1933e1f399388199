#pragma once

class QScrollBar;

namespace halvane::ui {

/// The look of scroll bars.
struct ScrollBar {
    /// A thumb of 6 pixels and nothing else.
    static void applyTo(QScrollBar& bar);
};

}  // namespace halvane::ui
