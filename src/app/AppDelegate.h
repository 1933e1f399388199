#pragma once

#include "app/LoginWindow.h"
#include "login/LoginView.h"
#include "ui/main/MainWindow.h"
#include "ui/widgets/WindowDelegate.h"
#include "util/NotificationCenter.h"

#include <functional>
#include <memory>
#include <optional>

namespace halvane::platform {
class Updater;
}
namespace halvane::session {
class HDCLUserConfig;
}

namespace halvane::app {

/// Decides what the person sees from launch to quit: the login window first, the main window after a
/// login, the login window again after a logout. Delegate of the windows it makes. Main thread.
class AppDelegate final : public ui::WindowDelegate {
public:
    struct Collaborators {
        util::NotificationCenter& notifications;
        platform::Updater& updater;
        session::HDCLUserConfig& user;
        std::function<std::unique_ptr<login::LoginView>()> makeLoginView;
        std::function<std::unique_ptr<ui::MainWindow>()> makeMainWindow;
    };

    explicit AppDelegate(Collaborators collaborators);
    ~AppDelegate() override;

    void applicationDidFinishLaunching();
    void applicationWillTerminate();
    /// Someone started the program again: the window that is in use comes to the front.
    void applicationShouldHandleReopen();
    /// The person wants to remove the client: the main window comes to the front with the uninstall reminder;
    /// while nobody is signed in the login window does, and the reminder follows the login.
    void applicationShouldUninstall();

    void addNoti();
    void showLoginWindow();
    /// Spare entry. What a login shows is the login view's own main window.
    void showMainWindow();

    // Each is made on first access.
    [[nodiscard]] LoginWindow& loginW();
    [[nodiscard]] login::LoginView& loginView();
    /// Null until the spare entry made one.
    [[nodiscard]] ui::MainWindow* MainW() const { return MainW_.get(); }

    bool windowShouldClose(ui::HDCLBaseWindow& window) override;

private:
    /// The main window of the session, as long as it is not hidden.
    [[nodiscard]] ui::MainWindow* mainWindowInUse();
    void mainWindowShown();

    Collaborators collaborators_;
    std::optional<util::NotificationCenter::Token> observer_;
    std::shared_ptr<AppDelegate*> self_;  ///< what the observer holds weakly
    bool uninstallWanted_ = false;        ///< until somebody is signed in

    // In this order: a view goes before the window that shows it.
    std::unique_ptr<LoginWindow> loginW_;
    std::unique_ptr<ui::MainWindow> MainW_;
    std::unique_ptr<login::LoginView> loginView_;
};

}  // namespace halvane::app
