#pragma once

#include "device/DeviceInfoView.h"
#include "device/DeviceStateNotices.h"
#include "ui/main/MainLeftMenuView.h"
#include "ui/widgets/ContentView.h"

#include <functional>
#include <memory>

namespace halvane::device {
class CompanyAccess;
class HVDeviceStatusMonitoring;
class HVStatusBarConfig;
}  // namespace halvane::device
namespace halvane::service {
class HVRequstHelper;
}
namespace halvane::session {
class WorkAddressInfoHelper;
}
namespace halvane::tools {
class UnInstallAlertView;
}
namespace halvane::util {
class Log;
}

namespace halvane::ui {

class MainRightOperationView;

/// Content of the main window: the menu on the left, the pages on the right. Made anew at every login, for
/// the user that is signed in then, and from then on the one that reacts to the watch over this computer and to
/// the icon in the status bar. Main thread.
class MainView final : public ContentView {
public:
    /// All outlive the view.
    struct Collaborators {
        session::WorkAddressInfoHelper& workplaces;
        service::HVRequstHelper& requests;
        util::Log& log;
        MainLeftMenuView::Collaborators menu;
        device::DeviceInfoView::Collaborators device;
        device::HVDeviceStatusMonitoring& monitoring;
        device::CompanyAccess& companyAccess;
        platform::DesktopNotifications& desktopNotifications;
        device::HVStatusBarConfig& statusBar;
        std::function<std::unique_ptr<tools::UnInstallAlertView>()> makeUninstallAlert;
        std::function<void()> uninstallAfterLogin;  ///< the wish of somebody who is not signed in
    };

    /// Asks the server for the workplaces and begins to watch whether this computer is locked or lost.
    explicit MainView(Collaborators collaborators);
    ~MainView() override;

    /// The window to the front and to the middle of the screen, with the uninstall reminder over its content.
    void showUninstallAlert();

    [[nodiscard]] MainLeftMenuView& leftMenuView() { return *leftMenuView_; }
    [[nodiscard]] MainRightOperationView& rightOperationView() { return *rightOperationView_; }

protected:
    void viewDidMoveToWindow() override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void setUpUI();
    void configUserInfo();
    void requestWorkAddress();
    void startDeviceStatusMonitoring();
    void react(bool locked, bool lost);
    void uninstallMenuItemChosen();

    Collaborators collaborators_;
    device::DeviceStateNotices notices_;  ///< of this login
    MainLeftMenuView* leftMenuView_;
    MainRightOperationView* rightOperationView_;
    std::unique_ptr<tools::UnInstallAlertView> uninstallAlert_;  ///< made on first use
};

}  // namespace halvane::ui
