#include "ui/widgets/FilledButton.h"

#include "ui/widgets/HDCLUICenter.h"

#include <QPainter>

namespace halvane::ui {

FilledButton::FilledButton(const QString& title, QWidget* parent) : PushButton(title, parent) {
    setFont(HDCLUICenter::font(HDCLUICenter::Type::Body, QFont::Bold));
}

void FilledButton::setGround(Ground ground) {
    ground_ = ground;
    update();
}

QSize FilledButton::sizeHint() const {
    constexpr int padding = 24;
    constexpr int margin = 2 * HDCLUICenter::ringMargin;
    return {fontMetrics().horizontalAdvance(text()) + 2 * padding + margin, HDCLUICenter::heightControl + margin};
}

QColor FilledButton::groundColor() const {
    if (!isEnabled()) return HDCLUICenter::colorDisabledGround;
    if (ground_ == Ground::Busy) return HDCLUICenter::colorBusy;
    if (isDown()) return HDCLUICenter::colorThemeOrangePressed;
    return isHovered() ? HDCLUICenter::colorThemeOrangeHover : HDCLUICenter::colorThemeOrange;
}

QColor FilledButton::titleColor() const { return isEnabled() ? HDCLUICenter::colorOnFill : HDCLUICenter::colorDisabledText; }

void FilledButton::paintGround(QPainter& painter, const QRect& visible) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(groundColor());
    painter.drawRoundedRect(visible, HDCLUICenter::radiusControl, HDCLUICenter::radiusControl);
}

}  // namespace halvane::ui
