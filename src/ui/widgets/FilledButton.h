#pragma once

#include "ui/widgets/PushButton.h"

namespace halvane::ui {

/// The key button: white bold title on a filled ground.
class FilledButton final : public PushButton {
public:
    enum class Ground {
        ThemeOrange,
        Busy  ///< light grey and still; only the look of inactivity, clicks still arrive
    };

    FilledButton(const QString& title, QWidget* parent);

    [[nodiscard]] Ground ground() const { return ground_; }
    void setGround(Ground ground);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintGround(QPainter& painter, const QRect& visible) override;
    [[nodiscard]] QColor titleColor() const override;

private:
    [[nodiscard]] QColor groundColor() const;

    Ground ground_ = Ground::ThemeOrange;
};

}  // namespace halvane::ui
