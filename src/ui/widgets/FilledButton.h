#pragma once

#include "ui/widgets/HDCLUICenter.h"
#include "ui/widgets/PushButton.h"

namespace halvane::ui {

/// The key button: white bold title on a filled ground.
class FilledButton final : public PushButton {
public:
    enum class Ground {
        ThemeOrange,
        Slate,  ///< works, but there is no need to; its title is not bold
        Busy    ///< light grey and still; only the look of inactivity, clicks still arrive
    };

    FilledButton(const QString& title, QWidget* parent, HDCLUICenter::Type type = HDCLUICenter::Type::Body);

    [[nodiscard]] Ground ground() const { return ground_; }
    void setGround(Ground ground);

protected:
    void paintGround(QPainter& painter, const QRect& visible) override;
    [[nodiscard]] QColor titleColor() const override;

private:
    [[nodiscard]] QColor groundColor() const;

    HDCLUICenter::Type type_;
    Ground ground_ = Ground::ThemeOrange;
};

}  // namespace halvane::ui
