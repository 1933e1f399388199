#pragma once

#include "ui/main/MainLeftMenuView.h"
#include "ui/widgets/ContentView.h"

#include <functional>
#include <memory>

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
/// the user that is signed in then. Main thread.
class MainView final : public ContentView {
public:
    /// All outlive the view.
    struct Collaborators {
        session::WorkAddressInfoHelper& workplaces;
        service::HVRequstHelper& requests;
        util::Log& log;
        MainLeftMenuView::Collaborators menu;
        std::function<std::unique_ptr<tools::UnInstallAlertView>()> makeUninstallAlert;
    };

    /// Asks the server for the workplaces.
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

    Collaborators collaborators_;
    MainLeftMenuView* leftMenuView_;
    MainRightOperationView* rightOperationView_;
    std::unique_ptr<tools::UnInstallAlertView> uninstallAlert_;  ///< made on first use
};

}  // namespace halvane::ui
