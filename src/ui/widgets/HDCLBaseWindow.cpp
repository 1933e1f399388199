#include "ui/widgets/HDCLBaseWindow.h"

#include "ui/widgets/HDCLUICenter.h"
#include "ui/widgets/NamedImage.h"

#include <QApplication>
#include <QCloseEvent>
#include <QMouseEvent>
#include <QScreen>
#include <QShortcut>
#include <QWindow>
#include <algorithm>

namespace halvane::ui {

HDCLBaseWindow::HDCLBaseWindow() : QWidget(nullptr, Qt::Window) {
    QPalette ground = palette();
    ground.setColor(QPalette::Window, HDCLUICenter::colorCard);
    setPalette(ground);
    applyFrame();
    // The standard quit key is absent on desktops that Qt does not know.
    auto* quit = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q), this);
    QObject::connect(quit, &QShortcut::activated, qApp, &QCoreApplication::quit);
}

HDCLBaseWindow::~HDCLBaseWindow() {
    if (content_) content_->setParent(nullptr);
}

void HDCLBaseWindow::applyFrame() {
    const auto shows = [this](StandardButton button, StyleMaskBit bit) {
        return styleMask_.testFlag(bit) && !hiddenButtons_[static_cast<std::size_t>(button)];
    };
    Qt::WindowFlags flags = Qt::Window | Qt::CustomizeWindowHint | Qt::WindowSystemMenuHint;
    if (styleMask_.testFlag(Titled)) flags |= Qt::WindowTitleHint;
    if (shows(StandardButton::Close, Closable)) flags |= Qt::WindowCloseButtonHint;
    if (shows(StandardButton::Miniaturize, Miniaturizable)) flags |= Qt::WindowMinimizeButtonHint;
    if (shows(StandardButton::Zoom, Resizable)) flags |= Qt::WindowMaximizeButtonHint;
    setWindowFlags(flags);
}

void HDCLBaseWindow::setStyleMask(StyleMask mask) {
    styleMask_ = mask;
    applyFrame();
    restrictSize();
}

void HDCLBaseWindow::setStandardButtonHidden(StandardButton button) {
    hiddenButtons_[static_cast<std::size_t>(button)] = true;
    applyFrame();
}

void HDCLBaseWindow::setContentView(QWidget* view) {
    if (content_ && content_ != view) content_->setParent(nullptr);
    content_ = view;
    if (!view) return;
    view->setGeometry(rect());
    view->setParent(this);
    view->show();
}

void HDCLBaseWindow::setContentSize(QSize size) {
    contentSize_ = size;
    restrictSize();
    resize(size);
}

void HDCLBaseWindow::restrictSize() {
    if (contentSize_.isEmpty() || styleMask_.testFlag(Resizable)) return;
    setFixedSize(contentSize_);
}

void HDCLBaseWindow::setBackgroundPattern(const QString& imageName, QSize tile) {
    QPalette ground = palette();
    ground.setBrush(QPalette::Window, NamedImage::pixmap(imageName, tile, devicePixelRatioF()));
    setPalette(ground);
}

void HDCLBaseWindow::center() {
    if (windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen)) return;  // moving would unzoom it
    const QRect usable = screen()->availableGeometry();
    QRect frame(QPoint(), frameSize());
    frame.moveCenter(usable.center());
    // A window that is larger than the screen keeps its title bar on it.
    move(std::max(frame.left(), usable.left()), std::max(frame.top(), usable.top()));
}

void HDCLBaseWindow::orderFront() {
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
}

void HDCLBaseWindow::orderBack() {
    if (QGuiApplication::platformName().startsWith(QStringLiteral("wayland"))) {
        showMinimized();
    } else {
        lower();
    }
}

void HDCLBaseWindow::makeKeyAndOrderFront() {
    orderFront();
    if (canBecomeKeyWindow()) activateWindow();
}

void HDCLBaseWindow::closeEvent(QCloseEvent* event) { event->setAccepted(!delegate_ || delegate_->windowShouldClose(*this)); }

void HDCLBaseWindow::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() != QEvent::WindowStateChange || !isMaximized()) return;
    if (static_cast<QWindowStateChangeEvent*>(event)->oldState().testFlag(Qt::WindowMaximized)) return;
    // The desktop has zoomed already when it tells, so a refusal takes it back.
    const QSize proposed = screen()->availableGeometry().size();
    const bool allowed = styleMask_.testFlag(Resizable) && (!delegate_ || delegate_->windowShouldZoom(*this, proposed));
    if (!allowed) setWindowState(windowState() & ~Qt::WindowMaximized);
}

void HDCLBaseWindow::resizeEvent(QResizeEvent* event) {
    if (content_) content_->setGeometry(rect());
    const QSize wanted = windowWillResize(event->size());
    if (wanted != event->size()) resize(wanted);
}

void HDCLBaseWindow::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    // The first window is on its way to the screen when the icon is drawn, for all windows at once.
    if (!QGuiApplication::windowIcon().isNull()) return;
    QMetaObject::invokeMethod(
        qApp,
        [] {
            QGuiApplication::setWindowIcon(NamedImage::pixmap(QStringLiteral("AppIcon"), {64, 64}, 1));
        },
        Qt::QueuedConnection);
}

void HDCLBaseWindow::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) dragStart_ = event->position().toPoint();
}

void HDCLBaseWindow::mouseMoveEvent(QMouseEvent* event) {
    if (!dragStart_ || (event->position().toPoint() - *dragStart_).manhattanLength() < QApplication::startDragDistance()) return;
    // From here on the desktop moves the window, and keeps the release of the button for itself.
    dragStart_.reset();
    if (QWindow* handle = windowHandle()) handle->startSystemMove();
}

void HDCLBaseWindow::mouseReleaseEvent(QMouseEvent*) { dragStart_.reset(); }

}  // namespace halvane::ui
