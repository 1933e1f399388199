#include "ui/widgets/FocusRing.h"

#include <QFocusEvent>
#include <QPainter>

namespace halvane::ui {

namespace {

/// The focus leaves with the window or for a menu, and comes back as it was.
bool isPassing(Qt::FocusReason reason) { return reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason; }

}  // namespace

void FocusRing::focusIn(const QFocusEvent& event) {
    if (isPassing(event.reason())) return;
    shown_ = event.reason() == Qt::TabFocusReason || event.reason() == Qt::BacktabFocusReason || event.reason() == Qt::ShortcutFocusReason;
}

void FocusRing::focusOut(const QFocusEvent& event) {
    if (!isPassing(event.reason())) shown_ = false;
}

void FocusRing::paint(QPainter& painter, const QRect& control, int radius) const {
    if (!shown_) return;
    constexpr qreal half = HDCLUICenter::ringWidth / 2.0;
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(HDCLUICenter::colorInk, HDCLUICenter::ringWidth));
    painter.drawRoundedRect(QRectF(control).adjusted(half, half, -half, -half), radius - half, radius - half);
}

}  // namespace halvane::ui
