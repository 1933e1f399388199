#include "device/BareChartView.h"

#include "ui/widgets/HDCLUICenter.h"

#include <QChart>

namespace halvane::device {

BareChartView::BareChartView(QWidget* parent) : QChartView(parent) {
    setRenderHint(QPainter::Antialiasing);
    setFrameShape(QFrame::NoFrame);
    setBackgroundBrush(ui::HDCLUICenter::colorSub);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setInteractive(false);
    chart()->legend()->hide();
    chart()->setBackgroundVisible(false);
    chart()->setAnimationOptions(QChart::NoAnimation);
}

}  // namespace halvane::device
