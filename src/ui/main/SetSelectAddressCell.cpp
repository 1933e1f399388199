#include "ui/main/SetSelectAddressCell.h"

#include "ui/widgets/NamedImage.h"

#include <QPainter>

namespace halvane::ui {

namespace {

using C = HDCLUICenter;

constexpr int kTextLeft = 14;
constexpr int kImage = 24;
constexpr int kImageRight = 12;
constexpr int kGap = 8;

}  // namespace

SetSelectAddressCell::SetSelectAddressCell()
    : RowView({.inset = {},
               .radius = 0,
               .selected = C::colorSoft,
               .selectedHover = C::colorSoftPressed,
               .hover = C::colorSub,
               .pressed = C::colorHover}) {}

void SetSelectAddressCell::updateTitle(const QString& title, bool isSelect) {
    setAccessibleName(title);
    if (isSelect != isSelect_) {
        isSelect_ = isSelect;
        QAccessible::State changed;
        changed.checked = true;
        QAccessibleStateChangeEvent event(this, changed);
        QAccessible::updateAccessibility(&event);
    }
    update();
}

void SetSelectAddressCell::paintEvent(QPaintEvent* event) {
    RowView::paintEvent(event);
    QPainter painter(this);
    painter.setPen(C::colorText1);
    paintName(painter, rect().adjusted(kTextLeft, 0, -kImageRight - kImage - kGap, 0), C::font(C::Type::Body));
    NamedImage::paint(painter, isSelect_ ? QStringLiteral("radio_selected") : QStringLiteral("radio_normal"),
                      {width() - kImageRight - kImage, (height() - kImage) / 2, kImage, kImage});
}

}  // namespace halvane::ui
