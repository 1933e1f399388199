#pragma once

#include "ui/widgets/FocusRing.h"

#include <QCheckBox>

namespace halvane::ui {

/// A check box with its title in the caption size. Keeps a margin for the focus ring around it.
class CheckButton final : public QCheckBox {
public:
    CheckButton(const QString& title, QWidget* parent);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    [[nodiscard]] bool hitButton(const QPoint& position) const override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    FocusRing ring_;
};

}  // namespace halvane::ui
