#include "ui/widgets/ContentSize.h"

#include <QFontMetricsF>

namespace halvane::ui {

QSizeF ContentSize::getContentSizeWithFont(const QString& text, const QFont& font) { return QFontMetricsF(font).size(0, text); }

}  // namespace halvane::ui
