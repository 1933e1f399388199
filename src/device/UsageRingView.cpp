#include "device/UsageRingView.h"

#include "device/BareChartView.h"
#include "ui/widgets/CardGround.h"
#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/HDCLUICenter.h"

#include <QChart>
#include <QLabel>
#include <QPainter>
#include <QPieSeries>
#include <algorithm>

namespace halvane::device {

namespace {

using C = ui::HDCLUICenter;

constexpr int kPadding = 20;
constexpr int kTitleTop = 16;
constexpr int kTitleHeight = 24;
constexpr int kRingMargin = 22;  // above and below the ring
constexpr double kHole = 0.9;    // of the radius

QPieSeries* addSeries(QChart& chart, int slices) {
    auto* series = new QPieSeries(&chart);
    series->setPieSize(1);
    series->setHoleSize(kHole);
    for (int slice = 0; slice < slices; ++slice) {
        auto* part = series->append(QString(), 0);
        part->setPen(Qt::NoPen);
        part->setBrush(slice + 1 == slices ? C::colorLine : C::colorRing);
    }
    series->setLabelsVisible(false);
    chart.addSeries(series);
    return series;
}

}  // namespace

UsageRingView::UsageRingView(const QString& title, QWidget* parent)
    : QWidget(parent),
      titleLabel(new ui::ElidedLabel(title, C::font(C::Type::Body), C::colorText1, this)),
      pieChartView(new BareChartView(this)),
      centerLabel(new QLabel(QStringLiteral("xx.xxGB \nxx.xxGB"), this)) {
    titleLabel->setObjectName(QStringLiteral("titleLabel"));
    centerLabel->setObjectName(QStringLiteral("centerLabel"));
    centerLabel->setFont(C::font(C::Type::Figure));
    centerLabel->setAlignment(Qt::AlignCenter);
    centerLabel->setTextFormat(Qt::PlainText);
    setAccessibleName(title);
    setUpRing();
}

void UsageRingView::setUpRing() {
    pieChartView->setObjectName(QStringLiteral("pieChartView"));
    pieChartView->setFocusPolicy(Qt::NoFocus);
    pieChartView->setAttribute(Qt::WA_TransparentForMouseEvents);
    QChart& chart = *pieChartView->chart();
    // A whole ring beneath, which is seen while there is nothing to divide.
    addSeries(chart, 1)->slices().constFirst()->setValue(1);
    parts_ = addSeries(chart, 2);
    pieChartView->lower();
}

void UsageRingView::setCenterText(const QString& text) {
    if (centerLabel->text() != text) centerLabel->setText(text);
}

void UsageRingView::setParts(int used, int free) {
    // Negative parts cannot be drawn: then there is more cache than memory in use.
    parts_->slices().constFirst()->setValue(std::max(used, 0));
    parts_->slices().constLast()->setValue(std::max(free, 0));
    parts_->setVisible(parts_->sum() > 0);  // of nothing, Qt would leave what it drew last
}

QString UsageRingView::centerText() const { return centerLabel->text(); }
int UsageRingView::usedPart() const { return static_cast<int>(parts_->slices().constFirst()->value()); }
int UsageRingView::freePart() const { return static_cast<int>(parts_->slices().constLast()->value()); }

QString UsageRingView::accessibleText() const { return QStringLiteral("已用 ") + centerLabel->text().simplified(); }

void UsageRingView::resizeEvent(QResizeEvent*) {
    titleLabel->setGeometry(kPadding, kTitleTop, width() / 4, kTitleHeight);
    const int side = std::max(height() - 2 * kRingMargin, 0);
    const QRect ring((width() - side) / 2, kRingMargin, side, side);
    pieChartView->setGeometry(ring);
    pieChartView->chart()->setPlotArea(QRectF(0, 0, side, side));
    const int inner = static_cast<int>(side * kHole * 0.68);  // a square in the hole
    centerLabel->setGeometry(ring.center().x() - inner / 2, ring.center().y() - inner / 2, inner + 1, inner + 1);
}

void UsageRingView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    ui::CardGround::paint(painter, rect());
}

}  // namespace halvane::device
