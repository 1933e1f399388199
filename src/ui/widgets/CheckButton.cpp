#include "ui/widgets/CheckButton.h"

#include "ui/widgets/HDCLUICenter.h"
#include "ui/widgets/NamedImage.h"

#include <QPainter>

namespace halvane::ui {

namespace {

constexpr int kMargin = HDCLUICenter::ringMargin;
constexpr int kImage = 24;
constexpr int kGap = 6;  // the image brings 2 of its own
constexpr int kRightPadding = 4;

}  // namespace

CheckButton::CheckButton(const QString& title, QWidget* parent) : QCheckBox(title, parent) {
    setFont(HDCLUICenter::font(HDCLUICenter::Type::Caption));
    setFocusPolicy(Qt::TabFocus);
}

QSize CheckButton::sizeHint() const {
    return {2 * kMargin + kImage + kGap + fontMetrics().horizontalAdvance(text()) + kRightPadding, 2 * kMargin + kImage};
}

void CheckButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRect image(kMargin, (height() - kImage) / 2, kImage, kImage);
    painter.setOpacity(isEnabled() ? 1 : HDCLUICenter::disabledOpacity);
    NamedImage::paint(painter, isChecked() ? QStringLiteral("checkbox_pushed") : QStringLiteral("checkbox_normal"), image);
    painter.setOpacity(1);
    painter.setFont(font());
    painter.setPen(isEnabled() ? HDCLUICenter::colorText2 : HDCLUICenter::colorDisabledText);
    painter.drawText(rect().adjusted(kMargin + kImage + kGap, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter, text());
    ring_.paint(painter, rect());
}

bool CheckButton::hitButton(const QPoint& position) const { return rect().contains(position); }

void CheckButton::focusInEvent(QFocusEvent* event) {
    ring_.focusIn(*event);
    QCheckBox::focusInEvent(event);
    update();
}

void CheckButton::focusOutEvent(QFocusEvent* event) {
    ring_.focusOut(*event);
    QCheckBox::focusOutEvent(event);
    update();
}

}  // namespace halvane::ui
