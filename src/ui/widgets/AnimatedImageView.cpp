#include "ui/widgets/AnimatedImageView.h"

#include "ui/widgets/HDCLUICenter.h"
#include "ui/widgets/NamedImage.h"

#include <QPainter>

namespace halvane::ui {

AnimatedImageView::AnimatedImageView(const QString& fileName, QWidget* parent) : PictureView(parent) {
    movie_.setFileName(NamedImage::file(fileName));
    movie_.setCacheMode(QMovie::CacheAll);  // a dozen small frames, decoded once instead of at every turn
    QObject::connect(&movie_, &QMovie::frameChanged, this, [this] { update(); });
}

void AnimatedImageView::startAnimating() {
    animating_ = true;
    run();
}

void AnimatedImageView::stopAnimating() {
    animating_ = false;
    movie_.stop();
    movie_.jumpToFrame(0);
    update();
}

void AnimatedImageView::run() {
    if (!animating_ || !isVisible() || !HDCLUICenter::animates()) return;
    movie_.state() == QMovie::Paused ? movie_.setPaused(false) : movie_.start();
}

void AnimatedImageView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    run();
}

void AnimatedImageView::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    if (movie_.state() == QMovie::Running) movie_.setPaused(true);
}

void AnimatedImageView::paintEvent(QPaintEvent*) {
    if (movie_.currentFrameNumber() < 0) movie_.jumpToFrame(0);
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(rect(), movie_.currentPixmap());
}

}  // namespace halvane::ui
