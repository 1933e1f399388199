#include "ui/widgets/GridView.h"

#include "ui/widgets/HDCLUICenter.h"
#include "ui/widgets/NamedImage.h"
#include "ui/widgets/PushButton.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <algorithm>

namespace halvane::ui {

namespace {

using C = HDCLUICenter;

constexpr int kWidth = 204;
constexpr int kHeight = 184;
constexpr int kGap = 28;
constexpr int kImage = 72;
constexpr int kImageTop = 36;
constexpr int kTitleTop = 124;
constexpr int kTitleHeight = 32;
constexpr int kMargin = C::ringMargin;

}  // namespace

class GridView::ItemButton final : public PushButton {
public:
    ItemButton(const Item& item, QWidget* parent) : PushButton(item.title, parent), imageName_(item.imageName) {
        setFont(C::font(C::Type::RowTitle));
    }

protected:
    void paintGround(QPainter& painter, const QRect& visible) override {
        const bool lit = isHovered() || isDown();
        const QColor ground = isDown() ? C::colorSoft : lit ? C::colorCard : C::colorSub;
        painter.setPen(lit ? C::colorOutline : ground);
        painter.setBrush(ground);
        painter.drawRoundedRect(QRectF(visible).adjusted(0.5, 0.5, -0.5, -0.5), C::radiusCard, C::radiusCard);
        NamedImage::paint(painter, imageName_, {(width() - kImage) / 2, visible.top() + kImageTop, kImage, kImage});
    }
    [[nodiscard]] QColor titleColor() const override { return C::colorText1; }
    [[nodiscard]] QRect titleRect() const override {
        const QRect visible = visibleRect();
        return {visible.left() + titlePadding(), visible.top() + kTitleTop, visible.width() - 2 * titlePadding(), kTitleHeight};
    }
    void paintFocus(QPainter& painter) const override { focusRing().paint(painter, rect(), C::radiusCard + kMargin); }

private:
    QString imageName_;
};

GridView::GridView(const std::vector<Item>& items, QWidget* parent) : QWidget(parent) {
    for (int index = 0; index < static_cast<int>(items.size()); ++index) {
        auto* button = new ItemButton(items[static_cast<std::size_t>(index)], this);
        QObject::connect(button, &QPushButton::clicked, this, [this, index] {
            if (didClickItem) didClickItem(index);
        });
        items_.push_back(button);
    }
}

QSize GridView::sizeHint() const {
    const int count = static_cast<int>(items_.size());
    return {count * kWidth + std::max(0, count - 1) * kGap + 2 * kMargin, kHeight + 2 * kMargin};
}

void GridView::resizeEvent(QResizeEvent*) {
    const int count = static_cast<int>(items_.size());
    if (count == 0) return;
    const int each = (width() - 2 * kMargin - (count - 1) * kGap) / count;
    for (int index = 0; index < count; ++index)
        items_[static_cast<std::size_t>(index)]->setVisibleGeometry({kMargin + index * (each + kGap), kMargin, each, kHeight});
}

void GridView::keyPressEvent(QKeyEvent* event) {
    const bool forward = event->key() == Qt::Key_Right || event->key() == Qt::Key_Down;
    const bool backward = event->key() == Qt::Key_Left || event->key() == Qt::Key_Up;
    const auto focused = std::find(items_.begin(), items_.end(), QApplication::focusWidget());
    if (focused == items_.end() || (!forward && !backward)) return QWidget::keyPressEvent(event);
    if (forward && focused + 1 != items_.end()) (*(focused + 1))->setFocus(Qt::TabFocusReason);
    if (backward && focused != items_.begin()) (*(focused - 1))->setFocus(Qt::BacktabFocusReason);
}

}  // namespace halvane::ui
