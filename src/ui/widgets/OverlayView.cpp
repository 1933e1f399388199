#include "ui/widgets/OverlayView.h"

#include "ui/widgets/HDCLUICenter.h"
#include "ui/widgets/RowView.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFocusEvent>
#include <QGraphicsOpacityEffect>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPropertyAnimation>

namespace halvane::ui {

namespace {

using C = HDCLUICenter;

constexpr int kShadowBlur = 24;
constexpr int kShadowDrop = 8;
constexpr int kFade = 150;  // milliseconds

/// Rings that add up: the outer ones add the least, so that the shadow fades out like a blurred one.
void paintShadow(QPainter& painter, const QRect& panel) {
    constexpr int step = 2;
    constexpr qreal sum = (kShadowBlur / step + 1) / 2.0;
    painter.setPen(Qt::NoPen);
    for (int grow = kShadowBlur; grow >= 0; grow -= step) {
        QColor ring = C::colorShadow;
        // At the panel's edge half of the shadow's strength is reached, as with a blurred one.
        ring.setAlphaF(static_cast<float>(C::colorShadow.alphaF() / 2 / sum * (kShadowBlur - grow) / kShadowBlur));
        painter.setBrush(ring);
        const QRectF area = QRectF(panel).adjusted(-grow, -grow, grow, grow).translated(0, kShadowDrop);
        painter.drawRoundedRect(area, C::radiusCard + grow, C::radiusCard + grow);
    }
}

}  // namespace

/// White with round corners. Keeps clicks beside its controls from counting as outside.
class OverlayView::RaisedPanel final : public QWidget {
public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(C::colorLine);
        painter.setBrush(C::colorCard);
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), C::radiusCard, C::radiusCard);
    }
    void mousePressEvent(QMouseEvent* event) override { event->accept(); }
};

OverlayView::OverlayView(const QString& name, Ground ground) : ground_(ground), panel_(new RaisedPanel(this)) { setAccessibleName(name); }

QWidget& OverlayView::panel() const { return *panel_; }

void OverlayView::overlay(QWidget* view) {
    if (view_) view_->removeEventFilter(this);
    view_ = view;
    rememberKeyboard();
    view->installEventFilter(this);
    setParent(view);
    setGeometry(view->rect());
    raise();
    fadeIn();
    show();
    if (QWidget* first = firstResponder()) {
        first->setFocus(reason_);
    } else {
        focusNextPrevChild(true);
    }
}

/// Of the view's window, which need not be the active one: a removal is asked for from outside.
void OverlayView::rememberKeyboard() {
    before_ = view_->window()->focusWidget();
    // A click leaves the keyboard where it is, so a button that has it was worked by keyboard, and the
    // person shall see where the keyboard went.
    const auto* row = dynamic_cast<RowView*>(before_.data());
    const bool byKeyboard = qobject_cast<QAbstractButton*>(before_) || (row && row->isRingShown());
    reason_ = byKeyboard ? Qt::TabFocusReason : Qt::OtherFocusReason;
    if (!before_ || view_->isActiveWindow()) return;
    // In a window that is not active nobody is told that the keyboard left.
    QFocusEvent left(QEvent::FocusOut, Qt::OtherFocusReason);
    QCoreApplication::sendEvent(before_, &left);
}

void OverlayView::withdraw() {
    if (!view_) return;
    QWidget* view = view_;
    view->removeEventFilter(this);
    view_ = nullptr;
    // Before this is hidden, or the next control in it would get the keyboard on the way.
    const QWidget* focused = view->window()->focusWidget();
    if (focused == this || isAncestorOf(focused)) giveKeyboardBack(*view);
    hide();
    setParent(nullptr);
}

void OverlayView::giveKeyboardBack(QWidget& view) {
    QWidget* heir = before_ && before_->isVisible() && before_->window() == view.window() ? before_.data() : nullptr;
    for (QWidget* each : view.findChildren<QWidget*>()) {
        if (heir) break;
        if (each->isVisible() && each->isEnabled() && (each->focusPolicy() & Qt::TabFocus) != 0 && !isAncestorOf(each)) heir = each;
    }
    if (heir) heir->setFocus(reason_);
}

void OverlayView::fadeIn() {
    if (!C::animates()) return;
    auto* effect = new QGraphicsOpacityEffect(this);
    setGraphicsEffect(effect);
    auto* fade = new QPropertyAnimation(effect, "opacity", effect);
    fade->setDuration(kFade);
    fade->setStartValue(0.0);
    fade->setEndValue(1.0);
    // The effect paints by way of a picture, so it does not stay. It owns the animation that ends it.
    QObject::connect(
        fade, &QPropertyAnimation::finished, this, [this] { setGraphicsEffect(nullptr); }, Qt::QueuedConnection);
    fade->start();
}

bool OverlayView::eventFilter(QObject* watched, QEvent* event) {
    if (watched == view_ && event->type() == QEvent::Resize) setGeometry(view_->rect());
    return QWidget::eventFilter(watched, event);
}

void OverlayView::resizeEvent(QResizeEvent*) { panel_->move(panelPlace(size())); }

void OverlayView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (ground_ == Ground::Scrim) painter.fillRect(rect(), C::colorScrim);
    paintShadow(painter, panel_->geometry());
}

void OverlayView::mousePressEvent(QMouseEvent*) { clickedOutside(); }

void OverlayView::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) return cancelOperation();
    QWidget::keyPressEvent(event);
}

bool OverlayView::focusNextPrevChild(bool next) {
    QWidget* start = QApplication::focusWidget();
    if (!start || (start != this && !isAncestorOf(start))) start = this;
    QWidget* each = start;
    do {
        each = next ? each->nextInFocusChain() : each->previousInFocusChain();
        const bool stop = isAncestorOf(each) && (each->focusPolicy() & Qt::TabFocus) != 0 && each->isEnabled() && each->isVisibleTo(this);
        if (!stop) continue;
        each->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
        return true;
    } while (each != start);
    return true;
}

}  // namespace halvane::ui
