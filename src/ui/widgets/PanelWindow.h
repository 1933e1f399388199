#pragma once

#include "ui/widgets/HDCLBaseWindow.h"

namespace halvane::ui {

/// A small window beside the main one, of fixed size. Escape and Ctrl+W close it. It begins without a control
/// that has the keyboard, so that the key which opened it can set off nothing; Tab goes to the first.
class PanelWindow : public HDCLBaseWindow {
public:
    PanelWindow();

protected:
    void showEvent(QShowEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};

}  // namespace halvane::ui
