#include "app/UserInterface.h"

#include "app/HDCLProjectConfig.h"
#include "app/Services.h"
#include "tools/UnInstallAlertView.h"
#include "tools/UninstallAuthorisation.h"
#include "tools/UpdateVersionPanel.h"
#include "ui/main/MainView.h"
#include "ui/main/SelectAddressWindow.h"
#include "ui/widgets/NamedImage.h"
#include "util/SharedInstance.h"

namespace halvane::app {

UserInterface::UserInterface(Services& services)
    : services_(services),
      statusBar_(ui::NamedImage::pixmap),
      avatars_({.transport = services.transport(),
                .mainQueue = services.mainQueue(),
                .worker = services.workQueue(),
                .files = services.files(),
                .directories = services.directories(),
                .log = services.log(),
                .userAgent = services.userAgent()}),
      panels_([this] { return makeVersionPanel(); }, [this] { return makeSystemSetWindow(); }),
      delegate_({services.notifications(), services.updater(), services.user(), [this] { return makeLoginView(); },
                 [this] { return makeMainWindow(); }}) {
    util::SharedInstance<device::HVStatusBarConfig>::set(&statusBarConfig_);
}

UserInterface::~UserInterface() { util::SharedInstance<device::HVStatusBarConfig>::set(nullptr); }

std::unique_ptr<login::LoginView> UserInterface::makeLoginView() {
    return std::make_unique<login::LoginView>([this](login::LoginScreen& screen) { return services_.makeLoginFlow(screen, browser_); },
                                              [this] { return makeMainWindow(); });
}

std::unique_ptr<ui::MainWindow> UserInterface::makeMainWindow() {
    return std::make_unique<ui::MainWindow>([this] { return makeMainView(); });
}

std::unique_ptr<ui::MainView> UserInterface::makeMainView() {
    return std::make_unique<ui::MainView>(ui::MainView::Collaborators{
        .workplaces = services_.workplaces(),
        .requests = services_.requests(),
        .log = services_.log(),
        .menu = {.user = services_.user(),
                 .updater = services_.updater(),
                 .notifications = services_.notifications(),
                 .avatars = avatars_,
                 .panels = panels_,
                 .showLoginWindow = [this] { delegate_.loginW().makeKeyAndOrderFront(); }},
        .device = {services_.sampler(), services_.device(), *services_.workQueue(), services_.mainQueue()},
        .monitoring = services_.monitoring(),
        .companyAccess = services_.companyAccess(),
        .desktopNotifications = services_.desktopNotifications(),
        .statusBar = statusBarConfig_,
        .makeUninstallAlert = [this] { return std::make_unique<tools::UnInstallAlertView>(services_.makeUninstallAuthorisation()); },
        .uninstallAfterLogin = [this] { delegate_.applicationShouldUninstall(); }});
}

std::unique_ptr<tools::UpdateVersionPanel> UserInterface::makeVersionPanel() {
    return std::make_unique<tools::UpdateVersionPanel>(services_.updater(), services_.log(), services_.project().project_localVersion());
}

std::unique_ptr<ui::SelectAddressWindow> UserInterface::makeSystemSetWindow() {
    return std::make_unique<ui::SelectAddressWindow>(ui::SelectAddressWindow::Collaborators{
        services_.user(), services_.workplaces(), services_.requests(), services_.preferences(), services_.log()});
}

}  // namespace halvane::app
