#include "qt/QtApplication.h"

#include <QEvent>
#include <QLoggingCategory>

namespace halvane::qt {

QtApplication::QtApplication(int& argc, char** argv) : QApplication(argc, argv), signals_([] { exit(0); }) {
    setQuitOnLastWindowClosed(false);
    setApplicationName(QStringLiteral("halvane"));
    setDesktopFileName(QStringLiteral("com.halvane.Halvane"));
    // A picture that somebody else made badly is logged where it is refused; Qt's word about it says no more.
    QLoggingCategory::setFilterRules(QStringLiteral("qt.gui.imageio*=false\nqt.svg*=false"));
}

bool QtApplication::event(QEvent* event) {
    // Left to itself, a quit first asks every window to close, and ours answer by going behind.
    if (event->type() != QEvent::Quit) return QApplication::event(event);
    exit(0);
    return true;
}

}  // namespace halvane::qt
