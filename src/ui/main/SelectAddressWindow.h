#pragma once

#include "session/WorkAddressModel.h"
#include "ui/widgets/PanelWindow.h"

#include <array>
#include <optional>
#include <vector>

namespace halvane::platform {
class Preferences;
}
namespace halvane::service {
class HVRequstHelper;
}
namespace halvane::session {
class HDCLUserConfig;
class WorkAddressInfoHelper;
}  // namespace halvane::session
namespace halvane::util {
class Log;
}

namespace halvane::ui {

class ElidedLabel;
class RowView;
class SwitchButton;
class TableView;

/// The settings: the person's workplace, of which each choice is sent to the server at once, and the
/// automatic login. The list is the one that was cached when the window was made. Main thread; the
/// collaborators outlive it.
class SelectAddressWindow final : public PanelWindow {
public:
    struct Collaborators {
        session::HDCLUserConfig& user;
        session::WorkAddressInfoHelper& workplaces;
        service::HVRequstHelper& requests;
        platform::Preferences& preferences;
        util::Log& log;
    };

    explicit SelectAddressWindow(Collaborators collaborators);

    /// Sites of the company; the table shows those that the server names.
    static constexpr std::array funcTitles{"枫林T1", "枫林T4", "松岭", "成都", "上海", "大连", "武汉"};

    /// Read from the preferences on first access.
    [[nodiscard]] const std::optional<util::Value::List>& addressInfos();
    [[nodiscard]] const std::vector<session::WorkAddressModel>& dataSource() const { return dataSource_; }
    [[nodiscard]] int currentSelectIndex() const { return currentSelectIndex_; }

    /// Fills the table and marks the person's workplace, the last one of several with its value.
    void loadAddressData();
    /// Sends the workplace of the table's selected row. Nothing is shown of the answer, and the stored
    /// profile stays as the last login gave it.
    void tableViewSelectionDidChange();
    void updateAutoLoginAction();

protected:
    void showEvent(QShowEvent* event) override;

private:
    void setUpUI();
    [[nodiscard]] RowView* cellFor(int row, RowView* before);
    void showAutoLogin();
    /// Marks the workplace of whoever is signed in, unless that was done.
    void markWorkplace();

    Collaborators collaborators_;
    bool addressInfosRead_ = false;
    std::optional<util::Value::List> addressInfos_;
    std::vector<session::WorkAddressModel> dataSource_;
    int currentSelectIndex_ = 0;
    std::optional<std::string> markedFor_;  ///< user id
    ElidedLabel* titleTF;
    TableView* MenuTableView;
    ElidedLabel* autoLoginTF;
    SwitchButton* autoSwitch;
    bool isSettingState_ = false;  ///< while the switch moves without the person
};

}  // namespace halvane::ui
