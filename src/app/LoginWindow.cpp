#include "app/LoginWindow.h"

namespace halvane::app {

LoginWindow::LoginWindow() {
    setObjectName(QStringLiteral("LoginWindow"));
    setStandardButtonHidden(StandardButton::Miniaturize);
    setStandardButtonHidden(StandardButton::Zoom);
    setStyleMask(StyleMask(Titled | Closable | Miniaturizable));
}

}  // namespace halvane::app
