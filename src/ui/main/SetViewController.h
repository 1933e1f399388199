#pragma once

#include "ui/widgets/OverlayView.h"

#include <array>
#include <functional>

namespace halvane::session {
struct HDCLUserModel;
}

namespace halvane::ui {

class AvatarStore;
class AvatarView;
class ElidedLabel;
class TableView;

/// The pop-over of the left menu's head: who is signed in, and what can be set. It closes at a click
/// beside it and at Escape. Main thread; a callback may destroy it later, not inside the call.
class SetViewController final : public OverlayView {
public:
    explicit SetViewController(AvatarStore& avatars);

    static constexpr std::array funcTitles{"检查更新", "关于我们", "系统设置"};

    // Each may be empty.
    std::function<void()> updateVersionBlock;
    std::function<void()> aboutBlock;
    std::function<void()> systemSetBlock;
    std::function<void()> LogoutBlock;
    std::function<void()> quitBlock;
    std::function<void()> didClose;  ///< however it was closed

    void setModel(const session::HDCLUserModel& model);

    /// Below the head of a menu that stands at the upper left of `view`.
    void showOnView(QWidget* view) { overlay(view); }
    void close();

    /// What a row does. There is more to do than the list offers: 3 logs out, 4 quits.
    void didSelectRow(int row);

protected:
    [[nodiscard]] QPoint panelPlace(QSize view) const override;
    [[nodiscard]] QWidget* firstResponder() const override;
    void cancelOperation() override { close(); }
    void clickedOutside() override { close(); }

private:
    void setUpUI();

    AvatarStore& avatars_;
    AvatarView* avatar_;
    ElidedLabel* nameLabel;
    ElidedLabel* departmentLabel;
    ElidedLabel* emailLabel;
    TableView* tableView;
};

}  // namespace halvane::ui
