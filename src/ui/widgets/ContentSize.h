#pragma once

#include <QFont>
#include <QSizeF>
#include <QString>

namespace halvane::ui {

/// How much room a text takes. Main thread.
struct ContentSize {
    /// In logical pixels, drawn in that font: line by line as it is written, without wrapping. The empty text has the height
    /// of a line and no width.
    [[nodiscard]] static QSizeF getContentSizeWithFont(const QString& text, const QFont& font);
};

}  // namespace halvane::ui
