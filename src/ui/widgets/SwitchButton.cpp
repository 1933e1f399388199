#include "ui/widgets/SwitchButton.h"

#include "ui/widgets/HDCLUICenter.h"

#include <QKeyEvent>
#include <QPainter>

namespace halvane::ui {

namespace {

using C = HDCLUICenter;

constexpr int kWidth = 44;
constexpr int kHeight = 24;
constexpr int kKnobGap = 3;
constexpr int kKnob = kHeight - 2 * kKnobGap;
constexpr int kMotion = 120;  // milliseconds

}  // namespace

SwitchButton::SwitchButton(const QString& title, QWidget* parent) : QCheckBox(title, parent) {
    setFocusPolicy(Qt::TabFocus);
    motion_.setDuration(kMotion);
    QObject::connect(&motion_, &QVariantAnimation::valueChanged, this, [this](const QVariant& value) {
        knob_ = value.toReal();
        update();
    });
    QObject::connect(this, &QCheckBox::toggled, this, &SwitchButton::moveKnob);
}

QSize SwitchButton::sizeHint() const { return {kWidth + 2 * C::ringMargin, kHeight + 2 * C::ringMargin}; }

void SwitchButton::moveKnob(bool on) {
    const qreal target = on ? 1 : 0;
    motion_.stop();
    if (!isVisible() || !C::animates()) {
        knob_ = target;
        update();
        return;
    }
    motion_.setStartValue(knob_);
    motion_.setEndValue(target);
    motion_.start();
}

void SwitchButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setOpacity(isEnabled() ? 1 : C::disabledOpacity);
    const QRectF ground(C::ringMargin, (height() - kHeight) / 2.0, kWidth, kHeight);
    painter.setBrush(isChecked() ? C::colorThemeOrange : C::colorEdge);
    painter.drawRoundedRect(ground, kHeight / 2.0, kHeight / 2.0);
    painter.setBrush(C::colorOnFill);
    painter.drawEllipse(QRectF(ground.left() + kKnobGap + knob_ * (kWidth - kKnob - 2 * kKnobGap), ground.top() + kKnobGap, kKnob, kKnob));
    painter.setOpacity(1);
    ring_.paint(painter, ground.toRect().adjusted(-4, -4, 4, 4), kHeight / 2 + C::ringMargin);
}

bool SwitchButton::hitButton(const QPoint& position) const { return rect().contains(position); }

void SwitchButton::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        if (!event->isAutoRepeat()) click();
        return;
    }
    QCheckBox::keyPressEvent(event);
}

void SwitchButton::focusInEvent(QFocusEvent* event) {
    ring_.focusIn(*event);
    QCheckBox::focusInEvent(event);
    update();
}

void SwitchButton::focusOutEvent(QFocusEvent* event) {
    ring_.focusOut(*event);
    QCheckBox::focusOutEvent(event);
    update();
}

}  // namespace halvane::ui
