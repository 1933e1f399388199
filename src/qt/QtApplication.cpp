#include "qt/QtApplication.h"

#include <QEvent>

namespace halvane::qt {

QtApplication::QtApplication(int& argc, char** argv) : QApplication(argc, argv), signals_([] { exit(0); }) {
    setQuitOnLastWindowClosed(false);
    setApplicationName(QStringLiteral("halvane"));
    setDesktopFileName(QStringLiteral("halvane"));
}

bool QtApplication::event(QEvent* event) {
    // Left to itself, a quit first asks every window to close, and ours answer by going behind.
    if (event->type() != QEvent::Quit) return QApplication::event(event);
    exit(0);
    return true;
}

}  // namespace halvane::qt
