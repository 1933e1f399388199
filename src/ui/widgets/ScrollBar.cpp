#include "ui/widgets/ScrollBar.h"

#include "ui/widgets/HDCLUICenter.h"

#include <QScrollBar>

namespace halvane::ui {

void ScrollBar::applyTo(QScrollBar& bar) {
    static const QString style = QStringLiteral(
                                     "QScrollBar:vertical { width: 14px; margin: 0; background: transparent; border: none }"
                                     "QScrollBar::handle:vertical { min-height: 32px; margin: 0 4px; border-radius: 3px; background: %1 }"
                                     "QScrollBar::handle:vertical:disabled { background: transparent }"
                                     "QScrollBar::add-line, QScrollBar::sub-line { height: 0 }"
                                     "QScrollBar::add-page, QScrollBar::sub-page { background: transparent }")
                                     .arg(HDCLUICenter::colorEdge.name());
    bar.setStyleSheet(style);
    bar.setAccessibleName(QStringLiteral("滚动条"));
}

}  // namespace halvane::ui
