#include "app/AppDelegate.h"

#include "platform/Updater.h"
#include "session/HDCLUserConfig.h"
#include "ui/main/MainView.h"
#include "ui/widgets/HDCLUICenter.h"

#include <utility>

namespace halvane::app {

AppDelegate::AppDelegate(Collaborators collaborators)
    : collaborators_(std::move(collaborators)), self_(std::make_shared<AppDelegate*>(this)) {}

AppDelegate::~AppDelegate() {
    if (observer_) collaborators_.notifications.removeObserver(*observer_);
}

void AppDelegate::applicationDidFinishLaunching() {
    addNoti();
    showLoginWindow();
    collaborators_.updater.checkForUpdatesInBackground();
}

void AppDelegate::applicationWillTerminate() {}

void AppDelegate::applicationShouldHandleReopen() {
    ui::HDCLBaseWindow* main = mainWindowInUse();
    (main ? *main : loginW()).makeKeyAndOrderFront();
}

void AppDelegate::applicationShouldUninstall() {
    uninstallWanted_ = true;
    if (mainWindowInUse()) {
        mainWindowShown();
    } else {
        loginW().makeKeyAndOrderFront();
    }
}

ui::MainWindow* AppDelegate::mainWindowInUse() {
    auto* main = dynamic_cast<ui::MainWindow*>(loginView().MainW());
    return main && main->isVisible() ? main : nullptr;
}

void AppDelegate::mainWindowShown() {
    if (!std::exchange(uninstallWanted_, false)) return;
    if (auto* main = mainWindowInUse()) main->mainView().showUninstallAlert();
}

void AppDelegate::addNoti() {
    if (observer_) return;
    observer_ = collaborators_.notifications.addObserver("HDCL_Notification_LoginSuccess", [weak = std::weak_ptr(self_)] {
        if (const auto self = weak.lock()) (*self)->loginW().orderOut();
    });
}

void AppDelegate::showLoginWindow() { loginW().orderFront(); }

void AppDelegate::showMainWindow() {
    MainW_ = collaborators_.makeMainWindow();
    MainW_->setDelegate(this);
    MainW_->center();
    MainW_->makeKeyAndOrderFront();
}

LoginWindow& AppDelegate::loginW() {
    if (!loginW_) {
        loginW_ = std::make_unique<LoginWindow>();
        loginW_->setDelegate(this);
        loginW_->setContentView(&loginView());
        loginW_->setWindowTitle(QStringLiteral("Halvane"));
        loginW_->setContentSize(ui::HDCLUICenter::loginContentSize);
        loginW_->center();
    }
    return *loginW_;
}

login::LoginView& AppDelegate::loginView() {
    if (!loginView_) {
        loginView_ = collaborators_.makeLoginView();
        loginView_->mainWindowShown = [this] { mainWindowShown(); };
    }
    return *loginView_;
}

bool AppDelegate::windowShouldClose(ui::HDCLBaseWindow& window) {
    if (dynamic_cast<LoginWindow*>(&window)) {
        uninstallWanted_ = false;  // whoever turns away from the login gives it up
        if (collaborators_.user.user_isLogin()) return true;
        window.orderBack();
        return false;
    }
    if (dynamic_cast<ui::MainWindow*>(&window)) {
        if (MainW_) MainW_->orderBack();
        return false;
    }
    return true;
}

}  // namespace halvane::app
