#pragma once

#include "ui/widgets/PageView.h"

#include <QPointer>

namespace halvane::tools {
class CleanRubbishIntroView;
class CleanRubbishView;
class RemoteAssistanceView;
class SoftUnInstallView;
class ToolPanelView;
}  // namespace halvane::tools
namespace halvane::util {
class Log;
}

namespace halvane::ui {

class ElidedLabel;
class GridView;

/// The page of tools: a grid, and the tools' panels, each of which covers the page while it is shown. The
/// panels are made with the page and keep what is in them. Main thread; `log` outlives it.
class MoreFunctionView final : public PageView {
public:
    explicit MoreFunctionView(util::Log& log);

    void cleanItemAction();
    void remoteItemAction();
    void uninstallItemAction();
    void cleanIntroBackAction();
    void cleanIntroScanAction();
    void cleanBackAction();
    void cleanScanAction();
    void uninstallViewBackAcion();
    void remoteViewBackAcion();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void setUpUI();
    void connectPanels();
    void didClickItemAtIndex(int index);
    void present(tools::ToolPanelView& panel);
    void dismiss(tools::ToolPanelView& panel);

    util::Log& log_;
    ElidedLabel* titleLabel;
    GridView* gridView;
    tools::CleanRubbishIntroView* cleanIntroView;
    tools::CleanRubbishView* cleanView;
    tools::RemoteAssistanceView* remoteView;
    tools::SoftUnInstallView* uninstallView;
    QPointer<QWidget> opener_;  ///< the grid's item from which the keyboard went into a panel
};

}  // namespace halvane::ui
