#include "ui/widgets/WholeTextTip.h"

#include <QHelpEvent>
#include <QToolTip>

namespace halvane::ui {

void WholeTextTip::show(const QHelpEvent& event, QWidget& control, const QString& text) {
    // As rich text, because only that is wrapped; escaped, because others write the text.
    QToolTip::showText(event.globalPos(), QStringLiteral("<p>%1</p>").arg(text.toHtmlEscaped()), &control);
}

}  // namespace halvane::ui
