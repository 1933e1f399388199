#include "ui/widgets/NamedImage.h"

#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

// The images are an archive of their own, which the linker drops unless something names it; the macro
// stands outside every namespace.
static void initImages() { Q_INIT_RESOURCE(images); }

namespace halvane::ui {

QPixmap NamedImage::pixmap(const QString& name, QSize size, qreal devicePixelRatio) {
    return drawing(file(name + QStringLiteral(".svg")), size, devicePixelRatio);
}

QPixmap NamedImage::drawing(const QString& path, QSize size, qreal devicePixelRatio) {
    const QSize pixels = (QSizeF(size) * devicePixelRatio).toSize();
    const QString key = QStringLiteral("halvane:%1:%2x%3").arg(path).arg(pixels.width()).arg(pixels.height());
    QPixmap image;
    if (!QPixmapCache::find(key, &image)) {
        QSvgRenderer renderer(path);
        if (!renderer.isValid()) return {};
        image = QPixmap(pixels);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        renderer.render(&painter);
        painter.end();
        QPixmapCache::insert(key, image);
    }
    image.setDevicePixelRatio(devicePixelRatio);
    return image;
}

QString NamedImage::file(const QString& fileName) { return inside(QStringLiteral("images"), fileName); }

QString NamedImage::inside(const QString& folder, const QString& fileName) {
    static const bool initialised = (initImages(), true);
    Q_UNUSED(initialised);
    return QStringLiteral(":/%1/%2").arg(folder, fileName);
}

void NamedImage::paint(QPainter& painter, const QString& name, const QRect& target) {
    painter.drawPixmap(target.topLeft(), pixmap(name, target.size(), painter.device()->devicePixelRatioF()));
}

}  // namespace halvane::ui
