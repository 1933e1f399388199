#pragma once

#include "ui/widgets/PushButton.h"

namespace halvane::ui {

/// A small image with or without a title, without a border: the way back, a refresh, a cross to close.
/// 36 high.
class ToolButton final : public PushButton {
public:
    enum class Shows { ImageAndTitle, ImageOnly };

    /// `imageName`: of 16 pixels. With ImageOnly the title is still the button's text.
    ToolButton(const QString& imageName, const QString& title, Shows shows, QWidget* parent);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintGround(QPainter& painter, const QRect& visible) override;
    [[nodiscard]] QColor titleColor() const override;
    [[nodiscard]] QRect titleRect() const override;
    void paintFocus(QPainter& painter) const override;

private:
    QString imageName_;
    Shows shows_;
};

}  // namespace halvane::ui
