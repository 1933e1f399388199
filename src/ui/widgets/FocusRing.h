#pragma once

#include <QRect>

class QFocusEvent;
class QPainter;

namespace halvane::ui {

/// Whether a control shows that it has the keyboard: only after a person went to it by keyboard, so that
/// clicking leaves no ring. Owned by the control, which passes its focus events on and repaints.
class FocusRing {
public:
    void focusIn(const QFocusEvent& event);
    void focusOut(const QFocusEvent& event);
    [[nodiscard]] bool isShown() const { return shown_; }

    /// Into the margin that the control reserves: `control` is the control's whole rectangle.
    void paint(QPainter& painter, const QRect& control) const;

private:
    bool shown_ = false;
};

}  // namespace halvane::ui
