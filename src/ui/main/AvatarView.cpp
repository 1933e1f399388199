#include "ui/main/AvatarView.h"

#include "ui/main/AvatarStore.h"
#include "ui/widgets/NamedImage.h"

#include <QPainter>
#include <QPointer>

namespace halvane::ui {

AvatarView::AvatarView(QWidget* parent) : PictureView(parent) { setAccessibleName(QStringLiteral("头像")); }

void AvatarView::setAddress(AvatarStore& avatars, const std::optional<std::string>& address) {
    if (address_ != address.value_or("")) setImage({});  // the same person's picture need not flicker
    address_ = address.value_or("");
    if (address_.empty()) return;
    avatars.load(address_, [view = QPointer<QWidget>(this), this, asked = address_](const QImage& image) {
        if (view && asked == address_) setImage(image);
    });
}

void AvatarView::setImage(const QImage& image) {
    image_ = image;
    update();
}

void AvatarView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    if (image_.isNull()) return NamedImage::paint(painter, QStringLiteral("loginIcon"), rect());
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal ratio = devicePixelRatioF();
    QImage scaled = image_.scaled((QSizeF(size()) * ratio).toSize(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    scaled.setDevicePixelRatio(ratio);
    // As a brush, because the edge of a clip is not smooth.
    QBrush brush(scaled);
    painter.setPen(Qt::NoPen);
    painter.setBrush(brush);
    painter.drawEllipse(rect());
}

}  // namespace halvane::ui
