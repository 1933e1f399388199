#include "ui/widgets/PushButton.h"

#include "ui/widgets/HDCLUICenter.h"

#include <QKeyEvent>
#include <QPainter>

namespace halvane::ui {

PushButton::PushButton(const QString& title, QWidget* parent) : QPushButton(title, parent) { setFocusPolicy(Qt::TabFocus); }

void PushButton::setVisibleGeometry(const QRect& geometry) {
    constexpr int margin = HDCLUICenter::ringMargin;
    setGeometry(geometry.adjusted(-margin, -margin, margin, margin));
}

QRect PushButton::visibleRect() const {
    constexpr int margin = HDCLUICenter::ringMargin;
    return rect().adjusted(margin, margin, -margin, -margin);
}

void PushButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRect visible = visibleRect();
    paintGround(painter, visible);
    painter.setFont(font());
    painter.setPen(titleColor());
    painter.drawText(visible, Qt::AlignCenter, text());
    ring_.paint(painter, rect());
}

void PushButton::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        if (!event->isAutoRepeat()) click();
        return;
    }
    QPushButton::keyPressEvent(event);
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
