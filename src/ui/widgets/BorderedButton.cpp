#include "ui/widgets/BorderedButton.h"

#include <QPainter>

namespace halvane::ui {

using C = HDCLUICenter;

BorderedButton::BorderedButton(const QString& title, Look look, QWidget* parent, C::Type type) : PushButton(title, parent), look_(look) {
    setFont(C::font(type));
}

QColor BorderedButton::titleColor() const {
    if (!isEnabled()) return C::colorDisabledText;
    return look_ == Look::Orange ? C::colorInk : C::colorText1;
}

void BorderedButton::paintGround(QPainter& painter, const QRect& visible) {
    const bool orange = look_ == Look::Orange;
    QColor ground = C::colorCard;
    if (!isEnabled()) {
        ground = C::colorDisabledGround;
    } else if (isDown()) {
        ground = orange ? C::colorSoftPressed : C::colorPressed;
    } else if (isHovered()) {
        ground = orange ? C::colorSoft : C::colorHover;
    }
    painter.setPen(isEnabled() ? (orange ? C::colorOutline : C::colorLine) : ground);
    painter.setBrush(ground);
    painter.drawRoundedRect(QRectF(visible).adjusted(0.5, 0.5, -0.5, -0.5), C::radiusControl - 0.5, C::radiusControl - 0.5);
}

}  // namespace halvane::ui
