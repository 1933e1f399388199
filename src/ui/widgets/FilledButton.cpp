#include "ui/widgets/FilledButton.h"

#include <QPainter>

namespace halvane::ui {

using C = HDCLUICenter;

FilledButton::FilledButton(const QString& title, QWidget* parent, C::Type type) : PushButton(title, parent), type_(type) {
    setGround(Ground::ThemeOrange);
}

void FilledButton::setGround(Ground ground) {
    ground_ = ground;
    setFont(C::font(type_, ground == Ground::Slate ? QFont::Normal : QFont::Bold));
    update();
}

QColor FilledButton::groundColor() const {
    if (!isEnabled()) return C::colorDisabledGround;
    switch (ground_) {
        case Ground::Busy:
            return C::colorBusy;
        case Ground::Slate:
            return isDown() ? C::colorSlatePressed : isHovered() ? C::colorSlateHover : C::colorSlate;
        case Ground::ThemeOrange:
            return isDown() ? C::colorThemeOrangePressed : isHovered() ? C::colorThemeOrangeHover : C::colorThemeOrange;
    }
    return {};
}

QColor FilledButton::titleColor() const { return isEnabled() ? C::colorOnFill : C::colorDisabledText; }

void FilledButton::paintGround(QPainter& painter, const QRect& visible) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(groundColor());
    painter.drawRoundedRect(visible, C::radiusControl, C::radiusControl);
}

}  // namespace halvane::ui
