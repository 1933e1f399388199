#include "ui/main/SetSelectAddressCell.h"

#include "ui/widgets/NamedImage.h"
#include "ui/widgets/WholeTextTip.h"

#include <QFontMetrics>
#include <QHelpEvent>
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
    : RowView({.inset = {}, .radius = 0, .selected = C::colorSoft, .hover = C::colorSub, .pressed = C::colorHover}) {}

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

QRect SetSelectAddressCell::titleRect() const { return rect().adjusted(kTextLeft, 0, -kImageRight - kImage - kGap, 0); }

void SetSelectAddressCell::paintEvent(QPaintEvent* event) {
    RowView::paintEvent(event);
    QPainter painter(this);
    painter.setPen(C::colorText1);
    const QRect title = titleRect();
    painter.drawText(title, Qt::AlignVCenter | Qt::TextSingleLine,
                     fontMetrics().elidedText(accessibleName().simplified(), Qt::ElideRight, title.width()));
    NamedImage::paint(painter, isSelect_ ? QStringLiteral("radio_selected") : QStringLiteral("radio_normal"),
                      {width() - kImageRight - kImage, (height() - kImage) / 2, kImage, kImage});
}

bool SetSelectAddressCell::event(QEvent* event) {
    const bool cut = fontMetrics().horizontalAdvance(accessibleName()) > titleRect().width();
    if (event->type() != QEvent::ToolTip || !cut) return RowView::event(event);
    WholeTextTip::show(*static_cast<QHelpEvent*>(event), *this, accessibleName());
    return true;
}

}  // namespace halvane::ui
