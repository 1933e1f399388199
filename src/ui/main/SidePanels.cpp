#include "ui/main/SidePanels.h"

#include "tools/UpdateVersionPanel.h"
#include "ui/main/SelectAddressWindow.h"

#include <utility>

namespace halvane::ui {

SidePanels::SidePanels(MakeVersionPanel makeVersionPanel, MakeSystemSetWindow makeSystemSetWindow)
    : makeVersionPanel_(std::move(makeVersionPanel)), makeSystemSetWindow_(std::move(makeSystemSetWindow)) {}

SidePanels::~SidePanels() = default;

tools::UpdateVersionPanel& SidePanels::versionPanel() {
    if (!versionPanel_) {
        versionPanel_ = makeVersionPanel_();
        versionPanel_->setWindowTitle(QStringLiteral("更新提示"));
        versionPanel_->setContentSize({400, 300});
    }
    return *versionPanel_;
}

SelectAddressWindow& SidePanels::systemSetWindow() {
    if (!systemSetWindow_) {
        systemSetWindow_ = makeSystemSetWindow_();
        systemSetWindow_->setWindowTitle(QStringLiteral("设置"));
        systemSetWindow_->setContentSize({300, 400});
    }
    return *systemSetWindow_;
}

void SidePanels::closeVersionPanel() {
    if (versionPanel_) versionPanel_->close();
}

void SidePanels::closeSystemSetWindow() {
    if (systemSetWindow_) systemSetWindow_->close();
}

}  // namespace halvane::ui
