#include "ui/widgets/PanelWindow.h"

#include <QKeyEvent>

namespace halvane::ui {

PanelWindow::PanelWindow() {
    setStyleMask(StyleMask(Titled | Closable));
    setFocusPolicy(Qt::ClickFocus);
}

void PanelWindow::showEvent(QShowEvent* event) {
    HDCLBaseWindow::showEvent(event);
    if (!event->spontaneous()) setFocus(Qt::OtherFocusReason);
}

void PanelWindow::keyPressEvent(QKeyEvent* event) {
    const bool closes = event->key() == Qt::Key_Escape || (event->key() == Qt::Key_W && event->modifiers() == Qt::ControlModifier);
    if (closes) {
        close();
        return;
    }
    HDCLBaseWindow::keyPressEvent(event);
}

}  // namespace halvane::ui
