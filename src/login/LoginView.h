#pragma once

#include "login/LoginActions.h"
#include "login/LoginScreen.h"
#include "ui/widgets/ContentView.h"
#include "ui/widgets/HDCLBaseWindow.h"

#include <array>
#include <functional>
#include <memory>

namespace halvane::ui {
class CheckButton;
class FilledButton;
class IconTextField;
class LinkButton;
class TipLabel;
}  // namespace halvane::ui

namespace halvane::login {

/// Content of the login window: fields, button, automatic login and the way to a new password. Shows
/// what the login procedure says and hands it what the person does; it decides nothing about logins
/// itself. Owns the procedure and the main window, of which it is the delegate. Main thread.
class LoginView final : public ui::ContentView, public LoginScreen, public ui::WindowDelegate {
public:
    using MakeActions = std::function<std::unique_ptr<LoginActions>(LoginScreen&)>;
    using MakeMainWindow = std::function<std::unique_ptr<ui::HDCLBaseWindow>()>;

    /// `makeActions` is called once, when the controls stand; `makeMainWindow` at every login.
    LoginView(const MakeActions& makeActions, MakeMainWindow makeMainWindow);
    ~LoginView() override;

    /// Called after each main window came to the screen; may be empty.
    std::function<void()> mainWindowShown;

    /// The main window of the last login; null before the first.
    [[nodiscard]] ui::HDCLBaseWindow* MainW() const { return MainW_.get(); }

    [[nodiscard]] std::string text(Field field) const override;
    void setText(Field field, const std::string& text) override;
    [[nodiscard]] bool isTyped(Field field) const override;
    [[nodiscard]] bool autoLoginState() const override;
    void setAutoLoginState(bool on) override;
    [[nodiscard]] bool isAutoLoginToggled() const override { return isAutoLoginToggled_; }
    void setTip(const std::string& text) override;
    void setLook(Look look) override;
    void showAlertWithMsg(const std::string& text) override;
    void showMainWindow() override;

    bool windowShouldClose(ui::HDCLBaseWindow& window) override;

protected:
    void viewDidMoveToWindow() override;

private:
    void placeControls();
    void nameControls();
    void connectControls();
    [[nodiscard]] ui::IconTextField& fieldOf(Field field) const;

    // Set once in the constructor; children of this view.
    ui::IconTextField* userNameTF;
    ui::IconTextField* passWordTF;
    ui::TipLabel* tipLabel;
    ui::FilledButton* loginBtn;
    ui::CheckButton* autoLogin;
    ui::LinkButton* forgetPW;

    MakeMainWindow makeMainWindow_;
    std::unique_ptr<ui::HDCLBaseWindow> MainW_;
    std::array<QString, 2> setTexts_;  ///< what each field was last set to
    bool isAutoLoginToggled_ = false;
    bool isSettingState_ = false;  ///< while the switch moves without the person
    std::unique_ptr<LoginActions> actions_;
};

}  // namespace halvane::login
