#pragma once

#include "platform/StatusBar.h"

#include <QPixmap>
#include <QString>
#include <functional>

namespace halvane::qt {

/// Status items by StatusNotifierItem, and by XEmbed where the desktop does not know that. Main thread.
class QtStatusBar final : public platform::StatusBar {
public:
    /// Answers a named image; the size in logical pixels.
    using LoadImage = std::function<QPixmap(const QString& name, QSize size, qreal devicePixelRatio)>;

    explicit QtStatusBar(LoadImage loadImage) : loadImage_(std::move(loadImage)) {}

    /// Items are square in any case: neither protocol knows another length.
    [[nodiscard]] std::unique_ptr<Item> statusItemWithLength(int length) override;

private:
    LoadImage loadImage_;
};

}  // namespace halvane::qt
