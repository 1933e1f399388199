#pragma once

namespace halvane::ui {

/// Makes our own kinds of widgets known to screen readers: tables, their rows, overlays, pictures, charts.
class Accessibility {
public:
    /// Once, before the first window.
    static void install();
};

}  // namespace halvane::ui
