#include "ui/widgets/LinkButton.h"

#include "ui/widgets/HDCLUICenter.h"

#include <QPainter>

namespace halvane::ui {

LinkButton::LinkButton(const QString& title, QWidget* parent) : PushButton(title, parent) {
    setFont(HDCLUICenter::font(HDCLUICenter::Type::Caption));
    setCursor(Qt::PointingHandCursor);
}

QSize LinkButton::sizeHint() const {
    constexpr int height = 24;
    constexpr int margin = 2 * HDCLUICenter::ringMargin;
    return {fontMetrics().horizontalAdvance(text()) + 2 * padding + margin, height + margin};
}

QColor LinkButton::titleColor() const {
    if (!isEnabled()) return HDCLUICenter::colorDisabledText;
    return isDown() ? HDCLUICenter::colorThemeOrangePressed : HDCLUICenter::colorInk;
}

void LinkButton::paintGround(QPainter& painter, const QRect& visible) {
    if (!isHovered() && !isDown()) return;
    const int y = visible.center().y() + fontMetrics().ascent() / 2 + 3;
    painter.fillRect(QRect(visible.left() + padding, y, visible.width() - 2 * padding, 1), titleColor());
}

}  // namespace halvane::ui
