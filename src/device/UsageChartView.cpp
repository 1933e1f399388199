#include "device/UsageChartView.h"

#include "ui/widgets/HDCLUICenter.h"

#include <QChart>
#include <QGraphicsLayout>
#include <QKeyEvent>
#include <QLineSeries>
#include <QMouseEvent>
#include <QPainter>
#include <QTimerEvent>
#include <QValueAxis>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <utility>

namespace halvane::device {

namespace {

using C = ui::HDCLUICenter;

constexpr int kLabels = 5;
constexpr double kHighest = 100;
constexpr double kLength = CpuWave::kPoints - 1;
constexpr double kLeast = 8;

constexpr double kLineWidth = 1;
constexpr int kLeft = 36;  // of the plot, where the texts of the axis stand
constexpr int kRight = 2;
constexpr int kAbove = 9;
constexpr int kBelow = 10;
constexpr int kTextGap = 6;
constexpr int kTextHeight = 18;

constexpr double kZoom = 1.4;
constexpr double kKeyStep = 0.1;  // of what is shown
constexpr int kFrame = 16;        // milliseconds
constexpr double kFriction = 0.8;
constexpr double kStandstill = 0.2;  // pixels to a frame
constexpr int kLongestPause = 50;    // milliseconds between the last move and letting go

}  // namespace

UsageChartView::UsageChartView(QWidget* parent)
    : BareChartView(parent), xTexts_(std::vector<std::string>(CpuWave::kPoints)), shownPart_(kLength, kLeast) {
    setObjectName(QStringLiteral("lineChartView"));
    setAccessibleName(QStringLiteral("cpu占用曲线"));
    setFocusPolicy(Qt::TabFocus);
    setUpAxes();
}

void UsageChartView::setUpAxes() {
    yAxis_ = new QValueAxis(chart());
    yAxis_->setRange(0, kHighest);
    yAxis_->setGridLinePen(QPen(C::colorLine, 1));
    xAxis_ = new QValueAxis(chart());
    xAxis_->setGridLineVisible(false);
    for (auto* axis : {yAxis_, xAxis_}) {
        axis->setTickCount(kLabels);
        axis->setLabelsVisible(false);
        axis->setLineVisible(false);
    }
    chart()->addAxis(yAxis_, Qt::AlignLeft);
    chart()->addAxis(xAxis_, Qt::AlignBottom);
    applyShownPart();
}

QLineSeries* UsageChartView::addSeries() {
    auto* series = new QLineSeries(chart());
    series->setPen(QPen(C::colorCpuLine, kLineWidth));
    series->setPointsVisible(false);
    series->setPointLabelsVisible(false);
    chart()->addSeries(series);
    for (auto* axis : chart()->axes()) series->attachAxis(axis);
    series_.append(series);
    return series;
}

void UsageChartView::setData(const CpuWave& wave) {
    qsizetype used = 0;
    for (const auto& run : wave.runs()) {
        if (run.color != CpuWave::Color::Red) continue;  // the gap; white is what nobody sees before the first sample
        QList<QPointF> points;
        for (std::size_t i = run.first; i <= run.last; ++i) points.append(QPointF(wave.yVals()[i].x, wave.yVals()[i].y));
        (used < series_.size() ? series_[used] : addSeries())->replace(points);
        ++used;
    }
    for (; used < series_.size(); ++used) series_[used]->clear();
}

QList<QList<QPointF>> UsageChartView::drawnPieces() const {
    QList<QList<QPointF>> pieces;
    for (const auto* series : series_)
        if (!series->points().isEmpty()) pieces.append(series->points());
    return pieces;
}

void UsageChartView::zoomAt(double position, double factor) {
    shownPart_.zoom(position, factor);
    applyShownPart();
}

void UsageChartView::showAll() {
    shownPart_.showAll();
    applyShownPart();
}

void UsageChartView::move(double distance) {
    if (shownPart_.move(distance) == 0) glide_.stop();
    applyShownPart();
}

void UsageChartView::applyShownPart() {
    xAxis_->setRange(shownPart_.left(), shownPart_.right());
    if (shownPart_.showsAll()) {
        unsetCursor();
    } else {
        setCursor(dragging_ ? Qt::ClosedHandCursor : Qt::OpenHandCursor);
    }
}

double UsageChartView::pointsToPixel() const { return shownPart_.width() / std::max(chart()->plotArea().width(), 1.0); }

double UsageChartView::positionOf(const QPointF& place) const {
    return shownPart_.left() + (place.x() - chart()->plotArea().left()) * pointsToPixel();
}

void UsageChartView::resizeEvent(QResizeEvent* event) {
    BareChartView::resizeEvent(event);
    // On half pixels and in steps of whole ones the grid is crisp, and nothing moves with the width of a text.
    const int step = std::max((height() - kAbove - kBelow) / (kLabels - 1), 1);
    chart()->setPlotArea(QRectF(kLeft - 0.5, kAbove + 0.5, width() - kLeft - kRight, step * (kLabels - 1)));
    chart()->layout()->invalidate();
    chart()->layout()->activate();
}

// The texts of the axes. Qt Charts would cut them where the room is small.
void UsageChartView::drawForeground(QPainter* painter, const QRectF& /*rect*/) {
    const QRectF plot = chart()->plotArea();
    painter->setFont(C::font(C::Type::Axis));
    painter->setPen(C::colorAxisText);
    for (int label = 0; label < kLabels; ++label) {
        const double part = static_cast<double>(label) / (kLabels - 1);
        const QRectF beside(0, plot.bottom() - part * plot.height() - kTextHeight / 2.0, plot.left() - kTextGap, kTextHeight);
        painter->drawText(beside, Qt::AlignRight | Qt::AlignVCenter, QString::fromStdString(yTexts_.stringForValue(kHighest * part)));
        const QString below = QString::fromStdString(xTexts_.stringForValue(shownPart_.left() + part * shownPart_.width()));
        if (!below.isEmpty()) painter->drawText(QPointF(plot.left() + part * plot.width(), plot.bottom() + kTextHeight), below);
    }
}

void UsageChartView::paintEvent(QPaintEvent* event) {
    BareChartView::paintEvent(event);
    QPainter painter(viewport());
    painter.setRenderHint(QPainter::Antialiasing);
    ring_.paint(painter, viewport()->rect());
}

void UsageChartView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return event->ignore();
    glide_.stop();
    dragging_ = true;
    dragX_ = event->position().x();
    speed_ = 0;
    sinceMove_.start();
    applyShownPart();
}

void UsageChartView::mouseMoveEvent(QMouseEvent* event) {
    // The release may have gone elsewhere, with the page hidden meanwhile.
    dragging_ = dragging_ && event->buttons().testFlag(Qt::LeftButton);
    if (!dragging_) return;
    const double moved = event->position().x() - std::exchange(dragX_, event->position().x());
    speed_ = moved * kFrame / std::max<double>(static_cast<double>(sinceMove_.restart()), 1);
    move(-moved * pointsToPixel());
}

void UsageChartView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !std::exchange(dragging_, false)) return;
    applyShownPart();
    // Who holds still before letting go means this place.
    if (sinceMove_.elapsed() < kLongestPause && C::animates()) glide_.start(kFrame, this);
}

void UsageChartView::timerEvent(QTimerEvent* event) {
    if (event->timerId() != glide_.timerId()) return BareChartView::timerEvent(event);
    speed_ *= kFriction;
    if (std::abs(speed_) < kStandstill) return glide_.stop();
    move(-speed_ * pointsToPixel());
}

void UsageChartView::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return event->ignore();
    if (shownPart_.isNarrowest()) {
        showAll();
    } else {
        zoomAt(positionOf(event->position()), 1 / kZoom);
    }
}

void UsageChartView::wheelEvent(QWheelEvent* event) {
    const int turned = event->angleDelta().y();
    if (turned != 0) zoomAt(positionOf(event->position()), std::pow(kZoom, -turned / double{QWheelEvent::DefaultDeltasPerStep}));
    event->accept();
}

void UsageChartView::keyPressEvent(QKeyEvent* event) {
    const double middle = shownPart_.left() + shownPart_.width() / 2;
    const double step = shownPart_.width() * kKeyStep;
    switch (event->key()) {
        case Qt::Key_Plus:
        case Qt::Key_Equal:
            return zoomAt(middle, 1 / kZoom);
        case Qt::Key_Minus:
            return zoomAt(middle, kZoom);
        case Qt::Key_Left:
            return move(-step);
        case Qt::Key_Right:
            return move(step);
        case Qt::Key_Escape:
            if (!shownPart_.showsAll()) return showAll();
            [[fallthrough]];
        default:
            event->ignore();
    }
}

void UsageChartView::focusInEvent(QFocusEvent* event) {
    ring_.focusIn(*event);
    viewport()->update();
}

void UsageChartView::focusOutEvent(QFocusEvent* event) {
    ring_.focusOut(*event);
    viewport()->update();
}

}  // namespace halvane::device
