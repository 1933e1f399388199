#pragma once

#include <QWidget>

namespace halvane::ui {

/// What fills a window. Learns when it entered one, whether or not that window is on the screen yet.
class ContentView : public QWidget {
public:
    using QWidget::QWidget;

protected:
    /// `window()` is an HDCLBaseWindow. Called again for each further window that it enters.
    virtual void viewDidMoveToWindow() {}

    bool event(QEvent* event) override;
};

}  // namespace halvane::ui
