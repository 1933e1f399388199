#pragma once

#include "ui/widgets/HDCLUICenter.h"

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

    /// Just inside `control`: of buttons the whole rectangle with the margin that they reserve, of rows
    /// and tool buttons what they draw.
    void paint(QPainter& painter, const QRect& control, int radius = HDCLUICenter::ringRadius) const;

private:
    bool shown_ = false;
};

}  // namespace halvane::ui
