#include "ui/main/MainWindow.h"

#include "ui/main/MainView.h"
#include "ui/widgets/HDCLUICenter.h"

#include <utility>

namespace halvane::ui {

MainWindow::MainWindow(MakeMainView makeMainView) : makeMainView_(std::move(makeMainView)) {
    setObjectName(QStringLiteral("MainWindow"));
    setWindowTitle(QStringLiteral("Halvane"));
    setStyleMask(styleMask() | Resizable);
    setContentView(&mainView());
    setContentSize(HDCLUICenter::mainContentSize);
    setMinimumSize(HDCLUICenter::mainContentSize);
    setBackgroundPattern(QStringLiteral("bg_gray_main"), {24, 24});
}

MainWindow::~MainWindow() = default;

MainView& MainWindow::mainView() {
    if (!mainView_) mainView_ = makeMainView_();
    return *mainView_;
}

}  // namespace halvane::ui
