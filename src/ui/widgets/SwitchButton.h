#pragma once

#include "ui/widgets/FocusRing.h"

#include <QCheckBox>
#include <QVariantAnimation>

namespace halvane::ui {

/// A switch: its knob stands right and its ground is orange when it is on. Its title is not drawn, but
/// what a screen reader calls it. Keeps a margin for the focus ring.
class SwitchButton final : public QCheckBox {
public:
    SwitchButton(const QString& title, QWidget* parent);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    [[nodiscard]] bool hitButton(const QPoint& position) const override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void moveKnob(bool on);

    FocusRing ring_;
    QVariantAnimation motion_;
    qreal knob_ = 0;  ///< 0 left, 1 right
};

}  // namespace halvane::ui
