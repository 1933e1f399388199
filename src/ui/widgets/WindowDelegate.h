#pragma once

#include <QSize>

namespace halvane::ui {

class HDCLBaseWindow;

/// Who decides for a window. Asked on the main thread, from inside the window's event.
class WindowDelegate {
public:
    virtual ~WindowDelegate() = default;

    /// Before the person's wish to close is followed. A quit of the program does not ask.
    virtual bool windowShouldClose(HDCLBaseWindow& window) = 0;
    /// `proposed` is the frame that the desktop would give. A smaller one than the main window's content
    /// needs is refused.
    virtual bool windowShouldZoom(HDCLBaseWindow& window, QSize proposed);
};

}  // namespace halvane::ui
