#pragma once

#include "ui/widgets/PanelWindow.h"

#include <memory>
#include <string>

namespace halvane::platform {
class Updater;
}
namespace halvane::util {
class Log;
}

namespace halvane::ui {
class ElidedLabel;
class FilledButton;
class ImageView;
}  // namespace halvane::ui

namespace halvane::tools {

/// Which version is installed, and whether there is a newer one: asks the updater once, when it is made,
/// and shows the answer whenever that comes. Without buttons in its frame. Whoever
/// owns it gives it its title. Main thread; `updater` and `log` outlive it.
class UpdateVersionPanel final : public ui::PanelWindow {
public:
    UpdateVersionPanel(platform::Updater& updater, util::Log& log, const std::string& localVersion);

    /// Closes the panel, then lets the updater look for itself, with windows of its own.
    void updateAction();
    /// Without the button the version stands higher.
    void updateBtnIsHidden(bool hidden);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void setUpUI(const std::string& localVersion);
    void observeUpdater();
    void didFindValidUpdate(const std::string& versionString);
    void didNotFindUpdate();
    void place();

    platform::Updater& updater_;
    util::Log& log_;
    ui::ImageView* iconImgView;
    ui::ElidedLabel* versionLabel;
    ui::ElidedLabel* detailLabel;
    ui::FilledButton* updateBtn;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);  ///< answers may come when it is gone
};

}  // namespace halvane::tools
