#pragma once

#include <QPixmap>
#include <QString>

namespace halvane::ui {

/// Pictures out of the bundles that stand inside the program, by name and without a suffix. Main thread.
///
/// "HVImageSource.bundle" has one for each kind of file, under the names that util::FileKind gives. A name that does not
/// exist gives an empty pixmap, and Qt warns. Sizes are in logical pixels.
struct BundleImage {
    /// Where the picture stands in "HVImageSource.bundle".
    [[nodiscard]] static QString getFileTypeImgPathWithImageName(const QString& imageName);
    /// The picture of that bundle.
    [[nodiscard]] static QPixmap getImageWithBundlePath(const QString& imageName, QSize size, qreal devicePixelRatio);
    /// The one of another bundle; `bundleName` without ".bundle".
    [[nodiscard]] static QPixmap getImageWithBundleName(const QString& bundleName, const QString& imageName, QSize size,
                                                        qreal devicePixelRatio);
};

}  // namespace halvane::ui
