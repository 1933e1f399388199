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
    : RowView({.inset = {},
               .radius = C::radiusControl,
               .selected = {},
               .selectedHover = {},
               .hover = C::colorHover,
               .pressed = C::colorPressed}),
      imageName_(imageName) {
    setAccessibleName(title);
}

void SetMenuCell::paintEvent(QPaintEvent* event) {
    RowView::paintEvent(event);
    QPainter painter(this);
    NamedImage::paint(painter, imageName_, {kImageLeft, (height() - kImage) / 2, kImage, kImage});
    painter.setPen(C::colorText1);
    paintName(painter, rect().adjusted(kTextLeft, 0, -kTextRight, 0), C::font(C::Type::Body));
}

}  // namespace halvane::ui
