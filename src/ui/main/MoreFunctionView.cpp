#include "ui/main/MoreFunctionView.h"

#include "tools/CleanRubbishIntroView.h"
#include "tools/CleanRubbishView.h"
#include "tools/RemoteAssistanceView.h"
#include "tools/SoftUnInstallView.h"
#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/GridView.h"
#include "ui/widgets/HDCLUICenter.h"
#include "util/Log.h"

#include <fmt/format.h>
#include <QApplication>

namespace halvane::ui {

namespace {

using C = HDCLUICenter;

constexpr int kTitleTop = 40;
constexpr int kTitleHeight = 36;
constexpr int kGridTop = 108;

}  // namespace

MoreFunctionView::MoreFunctionView(util::Log& log) : PageView(QStringLiteral("功能"), Ground::Clear), log_(log) {
    setObjectName(QStringLiteral("moreFunctionView"));
    setUpUI();
    connectPanels();
}

void MoreFunctionView::setUpUI() {
    titleLabel = new ElidedLabel(QStringLiteral("功能大全"), C::font(C::Type::Heading, QFont::Bold), C::colorText1, this);
    titleLabel->setObjectName(QStringLiteral("titleLabel"));
    gridView = new GridView({{QStringLiteral("清理垃圾"), QStringLiteral("clean")},
                             {QStringLiteral("远程协助"), QStringLiteral("remote")},
                             {QStringLiteral("软件管理"), QStringLiteral("softUninstall")}},
                            this);
    gridView->setObjectName(QStringLiteral("gridView"));
    gridView->didClickItem = [this](int index) { didClickItemAtIndex(index); };
    cleanIntroView = new tools::CleanRubbishIntroView(this);
    cleanView = new tools::CleanRubbishView(this);
    remoteView = new tools::RemoteAssistanceView(this);
    uninstallView = new tools::SoftUnInstallView(this);
    for (QWidget* panel : std::initializer_list<QWidget*>{cleanIntroView, cleanView, remoteView, uninstallView}) panel->hide();
}

void MoreFunctionView::connectPanels() {
    cleanIntroView->backBlock = [this] { cleanIntroBackAction(); };
    cleanIntroView->scanBlock = [this] { cleanIntroScanAction(); };
    cleanView->backBlock = [this] { cleanBackAction(); };
    cleanView->scanBlock = [this] { cleanScanAction(); };
    remoteView->backBlock = [this] { remoteViewBackAcion(); };
    uninstallView->backBlock = [this] { uninstallViewBackAcion(); };
}

void MoreFunctionView::didClickItemAtIndex(int index) {
    log_.write(fmt::format("didClickItemAtIndex: {}", index));
    switch (index) {
        case 0:
            return cleanItemAction();
        case 1:
            return remoteItemAction();
        case 2:
            return uninstallItemAction();
        default:
            return;
    }
}

void MoreFunctionView::present(tools::ToolPanelView& panel) {
    if (gridView->isAncestorOf(QApplication::focusWidget())) opener_ = QApplication::focusWidget();
    panel.setGeometry(rect());
    panel.raise();
    panel.show();
    panel.takeKeyboard(opener_ ? Qt::TabFocusReason : Qt::OtherFocusReason);
    // What it covers is out of reach of Tab and of screen readers.
    titleLabel->hide();
    gridView->hide();
}

void MoreFunctionView::dismiss(tools::ToolPanelView& panel) {
    const bool hadKeyboard = panel.isAncestorOf(QApplication::focusWidget());
    titleLabel->show();
    gridView->show();
    if (hadKeyboard && opener_) opener_->setFocus(Qt::BacktabFocusReason);
    panel.hide();
    opener_ = nullptr;
}

void MoreFunctionView::cleanItemAction() { present(*cleanIntroView); }

void MoreFunctionView::remoteItemAction() { present(*remoteView); }

void MoreFunctionView::uninstallItemAction() { present(*uninstallView); }

void MoreFunctionView::cleanIntroBackAction() { dismiss(*cleanIntroView); }

void MoreFunctionView::cleanIntroScanAction() {
    present(*cleanView);
    cleanIntroView->hide();
}

void MoreFunctionView::cleanBackAction() { dismiss(*cleanView); }

void MoreFunctionView::cleanScanAction() {
    cleanView->startScanAnimattion();
    cleanView->updateTitle(QStringLiteral("xxxMB..."));
    cleanView->updateSubTitle(QStringLiteral("正在扫描：xxx/xxx/xxx"));
}

void MoreFunctionView::uninstallViewBackAcion() { dismiss(*uninstallView); }

void MoreFunctionView::remoteViewBackAcion() { dismiss(*remoteView); }

void MoreFunctionView::resizeEvent(QResizeEvent*) {
    const QRect column = C::contentColumn(size());
    titleLabel->setGeometry(column.left(), kTitleTop, column.width(), kTitleHeight);
    constexpr int margin = C::ringMargin;
    gridView->setGeometry(column.left() - margin, kGridTop - margin, column.width() + 2 * margin, gridView->sizeHint().height());
    for (QWidget* panel : std::initializer_list<QWidget*>{cleanIntroView, cleanView, remoteView, uninstallView}) panel->setGeometry(rect());
}

}  // namespace halvane::ui
