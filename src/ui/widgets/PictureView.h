#pragma once

#include <QWidget>

namespace halvane::ui {

/// Base of what only shows a picture. With an accessible name it says something, and screen readers find it;
/// without one it is decoration.
class PictureView : public QWidget {
public:
    using QWidget::QWidget;
};

}  // namespace halvane::ui
