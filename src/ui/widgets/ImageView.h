#pragma once

#include <QWidget>

namespace halvane::ui {

/// A named image in the size of the view.
class ImageView final : public QWidget {
public:
    ImageView(const QString& imageName, QWidget* parent) : QWidget(parent), imageName_(imageName) {}

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString imageName_;
};

}  // namespace halvane::ui
