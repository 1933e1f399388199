#pragma once

#include "ui/widgets/HDCLUICenter.h"
#include "ui/widgets/PushButton.h"

namespace halvane::ui {

/// A button beside the key button: a title within a fine border.
class BorderedButton final : public PushButton {
public:
    enum class Look {
        Orange,  ///< asks to be used
        Plain
    };

    BorderedButton(const QString& title, Look look, QWidget* parent, HDCLUICenter::Type type = HDCLUICenter::Type::Body);

protected:
    void paintGround(QPainter& painter, const QRect& visible) override;
    [[nodiscard]] QColor titleColor() const override;

private:
    Look look_;
};

}  // namespace halvane::ui
