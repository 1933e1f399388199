#include "ui/widgets/RowView.h"

#include "ui/widgets/WholeTextTip.h"

#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>

namespace halvane::ui {

RowView::RowView(const Look& look) : look_(look) {}

void RowView::setSelected(bool selected) {
    if (selected_ == selected) return;
    selected_ = selected;
    update();
    QAccessible::State changed;
    changed.selected = true;
    QAccessibleStateChangeEvent event(this, changed);
    QAccessible::updateAccessibility(&event);
}

QColor RowView::groundColor() const {
    if (isMarked() && look_.selected.isValid()) return underMouse() && look_.selectedHover.isValid() ? look_.selectedHover : look_.selected;
    if (pressed_) return look_.pressed;
    return underMouse() && isEnabled() ? look_.hover : QColor();
}

void RowView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRect visible = visibleRect();
    if (const QColor ground = groundColor(); ground.isValid()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(ground);
        painter.drawRoundedRect(visible, look_.radius, look_.radius);
    }
    if (look_.line && !lineHidden_) painter.fillRect(visible.left(), visible.bottom(), visible.width(), 1, HDCLUICenter::colorLine);
    ring_.paint(painter, visible, look_.radius > 0 ? look_.radius : HDCLUICenter::radiusControl);
}

void RowView::paintName(QPainter& painter, const QRect& area, const QFont& font) {
    const QString name = accessibleName().simplified();
    const QString shown = QFontMetrics(font).elidedText(name, Qt::ElideRight, area.width());
    nameCut_ = shown != name;
    painter.setFont(font);
    painter.drawText(area, Qt::AlignVCenter | Qt::TextSingleLine, shown);
}

bool RowView::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip || !nameCut_) return QWidget::event(event);
    WholeTextTip::show(*static_cast<QHelpEvent*>(event), *this, accessibleName());
    return true;
}

void RowView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return QWidget::mousePressEvent(event);
    pressed_ = true;
    update();
}

void RowView::mouseReleaseEvent(QMouseEvent* event) {
    if (!pressed_) return QWidget::mouseReleaseEvent(event);
    pressed_ = false;
    update();
    // The last thing, because it may end this row.
    if (!rect().contains(event->position().toPoint())) return;
    if (const auto activated = onActivated) activated();
}

void RowView::focusInEvent(QFocusEvent* event) {
    ring_.focusIn(*event);
    QWidget::focusInEvent(event);
    update();
    if (onFocused) onFocused();
}

void RowView::focusOutEvent(QFocusEvent* event) {
    ring_.focusOut(*event);
    QWidget::focusOutEvent(event);
    update();
}

void RowView::enterEvent(QEnterEvent* event) {
    QWidget::enterEvent(event);
    update();
}

void RowView::leaveEvent(QEvent* event) {
    QWidget::leaveEvent(event);
    update();
}

}  // namespace halvane::ui
