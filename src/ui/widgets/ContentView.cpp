#include "ui/widgets/ContentView.h"

#include "ui/widgets/HDCLBaseWindow.h"

#include <QEvent>

namespace halvane::ui {

bool ContentView::event(QEvent* event) {
    const bool handled = QWidget::event(event);
    if (event->type() == QEvent::ParentChange && dynamic_cast<HDCLBaseWindow*>(window())) viewDidMoveToWindow();
    return handled;
}

}  // namespace halvane::ui
