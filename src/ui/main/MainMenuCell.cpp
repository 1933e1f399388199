#include "ui/main/MainMenuCell.h"

#include "ui/widgets/NamedImage.h"

#include <QPainter>
#include <utility>

namespace halvane::ui {

namespace {

using C = HDCLUICenter;

constexpr int kGap = 4;  // between two entries
constexpr int kImage = 24;
constexpr int kImageLeft = 16;
constexpr int kTextLeft = 52;
constexpr int kTextRight = 12;

constexpr RowView::Look look() {
    return {.inset = {0, 0, 0, kGap},
            .radius = C::radiusRow,
            .selected = C::colorSoft,
            .selectedHover = {},
            .hover = C::colorHover,
            .pressed = C::colorPressed};
}

}  // namespace

MainMenuCell::MainMenuCell(Entry entry) : RowView(look()), entry_(std::move(entry)) { setAccessibleName(entry_.title); }

void MainMenuCell::paintEvent(QPaintEvent* event) {
    RowView::paintEvent(event);
    QPainter painter(this);
    const QRect visible = visibleRect();
    NamedImage::paint(painter, imageName(), {kImageLeft, visible.top() + (visible.height() - kImage) / 2, kImage, kImage});
    painter.setPen(isSelected() ? C::colorInk : C::colorText1);
    paintName(painter, visible.adjusted(kTextLeft, 0, -kTextRight, 0), C::font(C::Type::Body, isSelected() ? QFont::Bold : QFont::Normal));
}

}  // namespace halvane::ui
