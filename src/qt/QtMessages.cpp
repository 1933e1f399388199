#include "qt/QtMessages.h"

#include <QString>
#include <atomic>

namespace halvane::qt {

namespace {

/// Process-wide as Qt's handler is.
std::atomic<util::Log*> currentLog = nullptr;

void write(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    // After a fatal one Qt ends the program by itself.
    if (auto* log = currentLog.load()) log->write("Qt: " + qFormatLogMessage(type, context, text).toStdString());
}

QtMessageHandler install(util::Log& log) {
    currentLog = &log;
    return qInstallMessageHandler(&write);
}

}  // namespace

QtMessages::QtMessages(util::Log& log) : before_(install(log)) {}

QtMessages::~QtMessages() {
    qInstallMessageHandler(before_);
    currentLog = nullptr;
}

}  // namespace halvane::qt
