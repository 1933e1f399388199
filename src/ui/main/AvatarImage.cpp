#include "ui/main/AvatarImage.h"

#include "ui/main/AvatarDrawing.h"

#include <QBuffer>
#include <QImageReader>
#include <QPainter>
#include <QPicture>
#include <QSvgRenderer>
#include <algorithm>
#include <array>

namespace halvane::ui {

namespace {

constexpr int kLongestSide = 4096;
constexpr qint64 kMostPixels = 16'000'000;
/// How far a drawing may reach beyond its edges: what lies outside costs as much time as what is seen.
constexpr int kReach = 4 * AvatarImage::edge;
constexpr std::array kFormats{"png", "jpeg", "gif", "bmp", "webp"};

QImage squareOf(const QImage& image) {
    const int side = std::min(image.width(), image.height());
    const QImage square = image.copy((image.width() - side) / 2, (image.height() - side) / 2, side, side);
    if (side <= AvatarImage::edge) return square;
    return square.scaled(AvatarImage::edge, AvatarImage::edge, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

/// Records the drawing, which paints nothing and so takes no time, whatever its size.
bool staysNear(QSvgRenderer& renderer) {
    QPicture record;
    QPainter painter(&record);
    renderer.render(&painter, QRectF(0, 0, AvatarImage::edge, AvatarImage::edge));
    painter.end();
    return QRect(0, 0, AvatarImage::edge, AvatarImage::edge).adjusted(-kReach, -kReach, kReach, kReach).contains(record.boundingRect());
}

QImage drawing(const QByteArray& data) {
    if (!AvatarDrawing::isHarmless(data)) return {};
    QSvgRenderer renderer(data);
    if (!renderer.isValid()) return {};
    renderer.setAspectRatioMode(Qt::KeepAspectRatioByExpanding);
    if (!staysNear(renderer)) return {};
    QImage image(AvatarImage::edge, AvatarImage::edge, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderer.render(&painter);
    return image;
}

}  // namespace

QImage AvatarImage::decoded(const util::Bytes& bytes) {
    QByteArray data = QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
    if (AvatarDrawing::isDrawing(data)) return drawing(data);
    QBuffer buffer(&data);
    QImageReader reader(&buffer);
    if (std::find(kFormats.begin(), kFormats.end(), reader.format().toStdString()) == kFormats.end()) return {};
    const QSize size = reader.size();
    if (size.isEmpty() || std::max(size.width(), size.height()) > kLongestSide || qint64(size.width()) * size.height() > kMostPixels)
        return {};
    reader.setAutoTransform(true);
    const QImage image = reader.read();
    return image.isNull() ? QImage() : squareOf(image);
}

}  // namespace halvane::ui
