#include "ui/widgets/BundleImage.h"

#include "ui/widgets/NamedImage.h"

namespace halvane::ui {

namespace {

constexpr QLatin1String kOwnBundle("HVImageSource");

QString pathInBundle(const QString& bundleName, const QString& imageName) {
    return NamedImage::inside(bundleName + QStringLiteral(".bundle"), imageName + QStringLiteral(".svg"));
}

}  // namespace

QString BundleImage::getFileTypeImgPathWithImageName(const QString& imageName) { return pathInBundle(kOwnBundle, imageName); }

QPixmap BundleImage::getImageWithBundlePath(const QString& imageName, QSize size, qreal devicePixelRatio) {
    return getImageWithBundleName(kOwnBundle, imageName, size, devicePixelRatio);
}

QPixmap BundleImage::getImageWithBundleName(const QString& bundleName, const QString& imageName, QSize size, qreal devicePixelRatio) {
    return NamedImage::drawing(pathInBundle(bundleName, imageName), size, devicePixelRatio);
}

}  // namespace halvane::ui
