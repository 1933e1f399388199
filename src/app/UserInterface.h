#pragma once

#include "app/AppDelegate.h"
#include "device/HVStatusBarConfig.h"
#include "qt/QtBrowser.h"
#include "qt/QtStatusBar.h"
#include "ui/main/AvatarStore.h"
#include "ui/main/SidePanels.h"

namespace halvane::app {

class Services;

/// Everything of the program that has a window, put together above the services, which outlive it. Main
/// thread.
class UserInterface {
public:
    explicit UserInterface(Services& services);
    ~UserInterface();
    UserInterface(const UserInterface&) = delete;
    UserInterface& operator=(const UserInterface&) = delete;

    [[nodiscard]] AppDelegate& delegate() { return delegate_; }

private:
    [[nodiscard]] std::unique_ptr<login::LoginView> makeLoginView();
    [[nodiscard]] std::unique_ptr<ui::MainWindow> makeMainWindow();
    [[nodiscard]] std::unique_ptr<ui::MainView> makeMainView();
    [[nodiscard]] std::unique_ptr<tools::UpdateVersionPanel> makeVersionPanel();
    [[nodiscard]] std::unique_ptr<ui::SelectAddressWindow> makeSystemSetWindow();

    Services& services_;
    qt::QtBrowser browser_;
    qt::QtStatusBar statusBar_;
    device::HVStatusBarConfig statusBarConfig_{statusBar_};
    ui::AvatarStore avatars_;
    ui::SidePanels panels_;
    AppDelegate delegate_;  // last: its windows use what stands above
};

}  // namespace halvane::app
