#include "ui/widgets/TipLabel.h"

#include "ui/widgets/HDCLUICenter.h"

#include <QAccessible>

namespace halvane::ui {

using C = HDCLUICenter;

TipLabel::TipLabel(QWidget* parent) : ElidedLabel(QString(), C::font(C::Type::Caption), C::colorErr, parent) {}

void TipLabel::setTip(const QString& text, Mood mood) {
    setColor(mood == Mood::Good ? C::colorOk : C::colorErr);
    setWholeText(text);
    // A screen reader speaks of the control that has the keyboard, and Qt's bridge of today keeps alerts
    // to itself, so the tip also describes the controls that it belongs to.
    for (QWidget* control : controls_) control->setAccessibleDescription(text);
    if (text.isEmpty()) return;
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

}  // namespace halvane::ui
