#include "ui/widgets/CardGround.h"

#include "ui/widgets/HDCLUICenter.h"

#include <QPainter>

namespace halvane::ui {

void CardGround::paint(QPainter& painter, const QRect& card) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(HDCLUICenter::colorSub);
    painter.drawRoundedRect(card, HDCLUICenter::radiusCard, HDCLUICenter::radiusCard);
}

}  // namespace halvane::ui
