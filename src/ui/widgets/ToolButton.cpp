#include "ui/widgets/ToolButton.h"

#include "ui/widgets/HDCLUICenter.h"
#include "ui/widgets/NamedImage.h"

#include <QPainter>

namespace halvane::ui {

namespace {

using C = HDCLUICenter;

constexpr int kHeight = 36;
constexpr int kImage = 16;
constexpr int kPadding = 12;
constexpr int kGap = 8;

}  // namespace

ToolButton::ToolButton(const QString& imageName, const QString& title, Shows shows, QWidget* parent)
    : PushButton(title, parent), imageName_(imageName), shows_(shows) {
    setFont(C::font(C::Type::Body));
}

QSize ToolButton::sizeHint() const {
    constexpr int margin = 2 * C::ringMargin;
    const int width = shows_ == Shows::ImageOnly ? kHeight : 2 * kPadding + kImage + kGap + fontMetrics().horizontalAdvance(text());
    return {width + margin, kHeight + margin};
}

QRect ToolButton::titleRect() const {
    if (shows_ == Shows::ImageOnly) return {};
    return visibleRect().adjusted(kPadding + kImage + kGap, 0, -kPadding, 0);
}

QColor ToolButton::titleColor() const { return isEnabled() ? C::colorText1 : C::colorDisabledText; }

void ToolButton::paintGround(QPainter& painter, const QRect& visible) {
    if (isDown() || isHovered()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(isDown() ? C::colorPressed : C::colorHover);
        painter.drawRoundedRect(visible, C::radiusControl, C::radiusControl);
    }
    const int left = shows_ == Shows::ImageOnly ? (width() - kImage) / 2 : visible.left() + kPadding;
    painter.setOpacity(isEnabled() ? 1 : C::disabledOpacity);
    NamedImage::paint(painter, imageName_, {left, (height() - kImage) / 2, kImage, kImage});
    painter.setOpacity(1);
}

void ToolButton::paintFocus(QPainter& painter) const { focusRing().paint(painter, visibleRect(), C::radiusControl); }

}  // namespace halvane::ui
