#pragma once

#include "ui/widgets/PictureView.h"

namespace halvane::ui {

/// A named image in the size of the view.
class ImageView final : public PictureView {
public:
    ImageView(const QString& imageName, QWidget* parent) : PictureView(parent), imageName_(imageName) {}

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString imageName_;
};

}  // namespace halvane::ui
