#include "qt/QtApplication.h"
#include "support/TemporaryHome.h"
#include "ui/widgets/HDCLUICenter.h"

#include <gtest/gtest.h>
#include <iostream>

namespace {

/// What the offscreen platform says at every ordering of windows would bury the rest.
void writeMessage(QtMsgType, const QMessageLogContext&, const QString& text) {
    if (!text.startsWith(QStringLiteral("This plugin does not support"))) std::cerr << text.toStdString() << '\n';
}

}  // namespace

// Windows without a display, in a home of the program's own. The application object is the real one,
// because a process has only one.
int main(int argc, char** argv) {
    const halvane::test::TemporaryHome home;
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    qInstallMessageHandler(writeMessage);
    halvane::qt::QtApplication application(argc, argv);
    halvane::ui::HDCLUICenter::applyTo(application);
    return RUN_ALL_TESTS();
}
