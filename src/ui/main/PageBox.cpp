#include "ui/main/PageBox.h"

#include "ui/widgets/HDCLUICenter.h"
#include "ui/widgets/PageView.h"

#include <QPainter>
#include <QPainterPath>

namespace halvane::ui {

namespace {

using C = HDCLUICenter;

constexpr int kArcRadii[] = {96, 188, 280};  // of their middle lines
constexpr int kArcWidth = 36;

}  // namespace

PageBox::PageBox(QWidget* parent) : QWidget(parent) {}

void PageBox::add(PageView* page) {
    page->setParent(this);
    page->hide();
    pages_.push_back(page);
    place(page);
}

void PageBox::show(PageView* page) {
    if (page == shown_) return;
    if (shown_) shown_->hide();
    shown_ = page;
    page->show();
    update();
}

void PageBox::place(QWidget* page) const { page->setGeometry(rect().adjusted(1, 1, -1, -1)); }

void PageBox::resizeEvent(QResizeEvent*) {
    for (PageView* page : pages_) place(page);
}

void PageBox::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath card;
    card.addRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), C::radiusCard, C::radiusCard);
    painter.fillPath(card, C::colorCard);
    if (shown_ && shown_->ground() == PageView::Ground::Clear) {
        painter.save();
        painter.setClipPath(card);
        painter.setPen(QPen(C::colorArcs, kArcWidth));
        for (const int radius : kArcRadii) painter.drawEllipse(QPointF(width(), height()), radius, radius);
        painter.restore();
    }
    painter.setPen(C::colorLine);
    painter.drawPath(card);
}

}  // namespace halvane::ui
