#include "ui/widgets/PageView.h"

#include "ui/widgets/HDCLUICenter.h"

#include <QPainter>

namespace halvane::ui {

PageView::PageView(const QString& name, Ground ground, QWidget* parent) : QWidget(parent), ground_(ground) { setAccessibleName(name); }

void PageView::paintEvent(QPaintEvent*) {
    if (ground_ == Ground::Clear) return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(HDCLUICenter::colorCard);
    painter.drawRoundedRect(rect(), HDCLUICenter::radiusCard - 1, HDCLUICenter::radiusCard - 1);  // within the card's border
}

}  // namespace halvane::ui
