#include "ui/widgets/PushButton.h"

#include "ui/widgets/HDCLUICenter.h"
#include "ui/widgets/WholeTextTip.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>

namespace halvane::ui {

namespace {

constexpr int kMargin = HDCLUICenter::ringMargin;

}  // namespace

PushButton::PushButton(const QString& title, QWidget* parent) : QPushButton(title, parent) { setFocusPolicy(Qt::TabFocus); }

void PushButton::setVisibleGeometry(const QRect& geometry) { setGeometry(geometry.adjusted(-kMargin, -kMargin, kMargin, kMargin)); }

QRect PushButton::visibleRect() const { return rect().adjusted(kMargin, kMargin, -kMargin, -kMargin); }

QSize PushButton::sizeHint() const {
    return {fontMetrics().horizontalAdvance(text()) + 2 * (titlePadding() + kMargin), HDCLUICenter::heightControl + 2 * kMargin};
}

QRect PushButton::titleRect() const { return visibleRect().adjusted(titlePadding(), 0, -titlePadding(), 0); }

void PushButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintGround(painter, visibleRect());
    painter.setFont(font());
    painter.setPen(titleColor());
    const QRect title = titleRect();
    painter.drawText(title, static_cast<int>(titleAlignment()) | Qt::TextSingleLine,
                     fontMetrics().elidedText(text(), Qt::ElideRight, title.width()));
    paintFocus(painter);
}

void PushButton::paintFocus(QPainter& painter) const { ring_.paint(painter, rect()); }

bool PushButton::event(QEvent* event) {
    const QRect title = titleRect();
    const bool cut = !title.isEmpty() && fontMetrics().horizontalAdvance(text()) > title.width();
    if (event->type() != QEvent::ToolTip || !toolTip().isEmpty() || !cut) return QPushButton::event(event);
    WholeTextTip::show(*static_cast<QHelpEvent*>(event), *this, text());
    return true;
}

void PushButton::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        if (!event->isAutoRepeat()) click();
        return;
    }
    // Qt's buttons would take the arrow keys for Tab; here they belong to the list or grid around.
    const bool arrow = event->key() >= Qt::Key_Left && event->key() <= Qt::Key_Down;
    arrow ? event->ignore() : QPushButton::keyPressEvent(event);
}

void PushButton::focusInEvent(QFocusEvent* event) {
    ring_.focusIn(*event);
    QPushButton::focusInEvent(event);
    update();
}

void PushButton::focusOutEvent(QFocusEvent* event) {
    ring_.focusOut(*event);
    QPushButton::focusOutEvent(event);
    update();
}

void PushButton::enterEvent(QEnterEvent* event) {
    QPushButton::enterEvent(event);
    update();
}

void PushButton::leaveEvent(QEvent* event) {
    QPushButton::leaveEvent(event);
    update();
}

}  // namespace halvane::ui
