#include "ui/widgets/ImageView.h"

#include "ui/widgets/NamedImage.h"

#include <QPainter>

namespace halvane::ui {

void ImageView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    NamedImage::paint(painter, imageName_, rect());
}

}  // namespace halvane::ui
