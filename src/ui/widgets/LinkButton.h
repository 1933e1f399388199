#pragma once

#include "ui/widgets/PushButton.h"

namespace halvane::ui {

/// A caption in orange that acts, underlined under the pointer.
class LinkButton final : public PushButton {
public:
    LinkButton(const QString& title, QWidget* parent);

    /// What it draws around the title, left and right.
    static constexpr int padding = 4;

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintGround(QPainter& painter, const QRect& visible) override;
    [[nodiscard]] QColor titleColor() const override;
    [[nodiscard]] int titlePadding() const override { return padding; }
};

}  // namespace halvane::ui
