#pragma once

#include "qt/QtSignals.h"

#include <QApplication>

namespace halvane::qt {

/// The application object. Windows that refuse to close never keep it from quitting, and it ends with
/// exit code 0 whoever asks: the person, the session, SIGTERM or SIGINT. It lives on without windows.
class QtApplication final : public QApplication {
public:
    QtApplication(int& argc, char** argv);

protected:
    bool event(QEvent* event) override;

private:
    QtSignals signals_;
};

}  // namespace halvane::qt
