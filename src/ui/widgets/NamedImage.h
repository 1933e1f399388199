#pragma once

#include <QPixmap>
#include <QRect>
#include <QString>

class QPainter;

namespace halvane::ui {

/// The images that stand inside the program, by name and without a suffix: "login_prompt". They are
/// drawings, so each is made at the exact number of device pixels. Main thread.
class NamedImage {
public:
    /// `size` in logical pixels. What was made is kept as long as Qt's cache has room. A name that does
    /// not exist gives an empty pixmap, and Qt warns.
    [[nodiscard]] static QPixmap pixmap(const QString& name, QSize size, qreal devicePixelRatio);

    /// Where an image that is no drawing stands; `fileName` with its suffix.
    [[nodiscard]] static QString file(const QString& fileName);

    /// Where a file stands in another of the program's folders.
    [[nodiscard]] static QString inside(const QString& folder, const QString& fileName);

    /// The drawing in that file, as `pixmap`.
    [[nodiscard]] static QPixmap drawing(const QString& path, QSize size, qreal devicePixelRatio);

    /// Draws it into `target` of the painter's widget.
    static void paint(QPainter& painter, const QString& name, const QRect& target);
};

}  // namespace halvane::ui
