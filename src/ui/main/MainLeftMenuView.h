#pragma once

#include <QWidget>
#include <functional>
#include <memory>

namespace halvane::platform {
class Updater;
}
namespace halvane::session {
class HDCLUserConfig;
struct HDCLUserModel;
}  // namespace halvane::session
namespace halvane::util {
class NotificationCenter;
}

namespace halvane::ui {

class AvatarStore;
class MainMenuHeadView;
class SetViewController;
class SidePanels;
class TableView;

/// Left of the main window: the signed-in person, the entries of the pages, and what the person's menu
/// leads to. Main thread.
class MainLeftMenuView final : public QWidget {
public:
    struct Collaborators {
        session::HDCLUserConfig& user;
        platform::Updater& updater;
        util::NotificationCenter& notifications;
        AvatarStore& avatars;
        SidePanels& panels;
        std::function<void()> showLoginWindow;  ///< to the front and with the keyboard
    };

    MainLeftMenuView(Collaborators collaborators, QWidget* parent);
    ~MainLeftMenuView() override;

    /// Told the entry that is selected, by a person or by `selectMenuIndex`.
    std::function<void(int index)> menuBlock;

    [[nodiscard]] int curSelectIndex() const { return curSelectIndex_; }
    void selectMenuIndex(int index);
    void updateUserInfo(const session::HDCLUserModel& model);
    /// Keeps the selection.
    void reloadTableView();
    /// The keyboard to the selected entry.
    void takeKeyboard();

    /// Shows the person's menu, or closes it when it is shown.
    void showSetMenu();
    void closeSetMenu();
    /// Null when it was not shown yet, or dropped because one of its entries ran.
    [[nodiscard]] SetViewController* popver() const { return popver_.get(); }

    /// Ends the session: the notification, the stored profile, then the windows.
    void logout();
    /// The updater's interactive check.
    void updateVersion();
    void aboutUs();
    void systemSet();
    void showUpdateVersion();
    void closeUpdateVersion();
    void showSystemSet();
    void closeSystemSet();

private:
    void setUpUI();
    void dropSetMenu();
    void menuSelected(int index);

    Collaborators collaborators_;
    MainMenuHeadView* headView;
    TableView* tableView;
    int curSelectIndex_ = 0;
    std::unique_ptr<SetViewController> popver_;
};

}  // namespace halvane::ui
