#include "qt/QtStatusItem.h"

#include <QAction>
#include <QCursor>
#include <QGuiApplication>
#include <QKeySequence>
#include <QThread>
#include <utility>

namespace halvane::qt {

QtStatusItem::QtStatusItem(QtStatusBar::LoadImage loadImage)
    : loadImage_(std::move(loadImage)), menu_(std::make_unique<QMenu>()), watch_([this] { makeIcon(); }) {}

QtStatusItem::~QtStatusItem() {
    menu_->close();
    if (icon_) icon_->hide();
    if (QThread::currentThread()->loopLevel() == 0) return;
    // It may be one of its own actions that ends this.
    menu_.release()->deleteLater();
    if (icon_) icon_.release()->deleteLater();
}

void QtStatusItem::setImage(const std::string& name, int width, int height) {
    image_ = QIcon();
    for (const qreal ratio : {1.0, 2.0}) image_.addPixmap(loadImage_(QString::fromStdString(name), {width, height}, ratio));
    if (icon_) icon_->setIcon(image_);
}

void QtStatusItem::setMenu(std::vector<platform::StatusBar::MenuEntry> entries) {
    menu_->clear();
    for (auto& entry : entries) {
        auto* action = menu_->addAction(QString::fromStdString(entry.title).replace(u'&', QStringLiteral("&&")));
        if (!entry.keyEquivalent.empty()) action->setShortcut(QKeySequence(QString::fromStdString(entry.keyEquivalent)));
        QObject::connect(action, &QAction::triggered, action, [run = std::move(entry.action)] {
            if (const auto kept = run) kept();
        });
    }
}

void QtStatusItem::makeIcon() {
    icon_ = std::make_unique<QSystemTrayIcon>(image_);
    icon_->setToolTip(QGuiApplication::applicationDisplayName());
    icon_->setContextMenu(menu_.get());
    QObject::connect(icon_.get(), &QSystemTrayIcon::activated, menu_.get(), [menu = menu_.get()](QSystemTrayIcon::ActivationReason reason) {
        // A Wayland desktop tells no X11 client where the pointer is over its panel.
        if (reason == QSystemTrayIcon::Trigger && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")) menu->popup(QCursor::pos());
    });
    icon_->show();
}

}  // namespace halvane::qt
