#include "ui/main/SetMenuCell.h"

#include "ui/widgets/NamedImage.h"

#include <QPainter>

namespace halvane::ui {

namespace {

using C = HDCLUICenter;

constexpr int kImage = 20;
constexpr int kImageLeft = 12;
constexpr int kTextLeft = 44;
constexpr int kTextRight = 12;

}  // namespace

SetMenuCell::SetMenuCell(const QString& title, const QString& imageName)
    : RowView({.inset = {}, .radius = C::radiusControl, .selected = {}, .hover = C::colorHover, .pressed = C::colorPressed}),
      imageName_(imageName) {
    setAccessibleName(title);
}

void SetMenuCell::paintEvent(QPaintEvent* event) {
    RowView::paintEvent(event);
    QPainter painter(this);
    NamedImage::paint(painter, imageName_, {kImageLeft, (height() - kImage) / 2, kImage, kImage});
    const QFont font = C::font(C::Type::Body);
    const QRect title = rect().adjusted(kTextLeft, 0, -kTextRight, 0);
    painter.setFont(font);
    painter.setPen(C::colorText1);
    painter.drawText(title, Qt::AlignVCenter | Qt::TextSingleLine,
                     QFontMetrics(font).elidedText(accessibleName(), Qt::ElideRight, title.width()));
}

}  // namespace halvane::ui
