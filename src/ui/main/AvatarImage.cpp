#include "ui/main/AvatarImage.h"

#include <QBuffer>
#include <QImageReader>
#include <QPainter>
#include <QSvgRenderer>
#include <algorithm>
#include <array>
#include <string_view>

namespace halvane::ui {

namespace {

constexpr int kLongestSide = 4096;
constexpr qint64 kMostPixels = 16'000'000;
constexpr std::size_t kLongestDrawing = 64 * 1024;
constexpr std::array kFormats{"png", "jpeg", "gif", "bmp", "webp"};
/// What makes a drawing repeat itself, load or move.
constexpr std::array<std::string_view, 8> kRefused{"<use", "<image", "<!DOCTYPE", "<!ENTITY", "<style", "<animate", "<filter", "<pattern"};

QImage squareOf(const QImage& image) {
    const int side = std::min(image.width(), image.height());
    const QImage square = image.copy((image.width() - side) / 2, (image.height() - side) / 2, side, side);
    if (side <= AvatarImage::edge) return square;
    return square.scaled(AvatarImage::edge, AvatarImage::edge, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

bool looksLikeDrawing(std::string_view bytes) { return bytes.substr(0, 512).find("<svg") != std::string_view::npos; }

QImage drawing(const util::Bytes& bytes) {
    const bool refused =
        std::any_of(kRefused.begin(), kRefused.end(), [&bytes](std::string_view part) { return bytes.find(part) != std::string::npos; });
    if (refused || bytes.size() > kLongestDrawing) return {};
    QSvgRenderer renderer(QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size())));
    if (!renderer.isValid()) return {};
    renderer.setAspectRatioMode(Qt::KeepAspectRatioByExpanding);
    QImage image(AvatarImage::edge, AvatarImage::edge, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderer.render(&painter);
    return image;
}

}  // namespace

QImage AvatarImage::decoded(const util::Bytes& bytes) {
    if (looksLikeDrawing(bytes)) return drawing(bytes);
    QByteArray data = QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
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
