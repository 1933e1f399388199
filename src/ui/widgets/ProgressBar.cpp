#include "ui/widgets/ProgressBar.h"

#include "ui/widgets/HDCLUICenter.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>

namespace halvane::ui {

namespace {

using C = HDCLUICenter;

constexpr int kThickness = 6;
constexpr int kWholeWay = 1600;  // milliseconds
constexpr qreal kPiece = 0.3;    // of the line

}  // namespace

ProgressBar::ProgressBar(const QString& name, QWidget* parent) : QProgressBar(parent) {
    setAccessibleName(name);
    setTextVisible(false);
    motion_.setStartValue(0.0);
    motion_.setEndValue(1.0);
    motion_.setDuration(kWholeWay);
    motion_.setLoopCount(-1);
    QObject::connect(&motion_, &QVariantAnimation::valueChanged, this, [this] { update(); });
    setFraction(std::nullopt);
}

void ProgressBar::setFraction(std::optional<double> fraction) {
    fraction_ = fraction;
    constexpr int kWhole = 100;
    setRange(0, fraction ? kWhole : 0);
    if (fraction) setValue(static_cast<int>(std::clamp(*fraction, 0.0, 1.0) * kWhole));
    wander();
    update();
}

void ProgressBar::wander() {
    const bool wanders = !fraction_ && isVisible() && C::animates();
    if (wanders == (motion_.state() == QAbstractAnimation::Running)) return;
    if (wanders) {
        motion_.start();
    } else {
        motion_.stop();
    }
}

void ProgressBar::showEvent(QShowEvent* event) {
    QProgressBar::showEvent(event);
    wander();
}

void ProgressBar::hideEvent(QHideEvent* event) {
    QProgressBar::hideEvent(event);
    motion_.stop();
}

void ProgressBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF line(0, (height() - kThickness) / 2.0, width(), kThickness);
    QPainterPath way;
    way.addRoundedRect(line, kThickness / 2.0, kThickness / 2.0);
    painter.fillPath(way, C::colorLine);
    QRectF done = line;
    if (fraction_) {
        done.setWidth(line.width() * std::clamp(*fraction_, 0.0, 1.0));
    } else {
        done.setWidth(line.width() * kPiece);
        const bool moves = motion_.state() == QAbstractAnimation::Running;
        done.moveLeft(moves ? motion_.currentValue().toReal() * (line.width() + done.width()) - done.width()
                            : line.center().x() - done.width() / 2);
    }
    if (done.isEmpty()) return;
    QPainterPath piece;
    piece.addRoundedRect(done, kThickness / 2.0, kThickness / 2.0);
    painter.fillPath(way.intersected(piece), C::colorThemeOrange);
}

}  // namespace halvane::ui
