#pragma once

#include "login/LoginActions.h"
#include "login/LoginScreen.h"

#include <string>
#include <utility>
#include <vector>

namespace halvane::login {

/// What a view asks of its login, in order.
class RecordingActions final : public LoginActions {
public:
    RecordingActions(LoginScreen& screenToUse, std::vector<std::string>& events) : screen(screenToUse), events_(events) {}
    ~RecordingActions() override { events_.push_back("gone, " + screen.text(LoginScreen::Field::UserName)); }

    void viewBuilt() override {
        screen.setText(LoginScreen::Field::UserName, "@example.com");
        screen.setAutoLoginState(false);
        events_.push_back("built");
    }
    void viewDidMoveToWindow() override { events_.push_back("in window"); }
    void loginAction() override { events_.push_back("login " + screen.text(LoginScreen::Field::UserName)); }
    void autoLoginAction() override { events_.push_back(screen.autoLoginState() ? "automatic on" : "automatic off"); }
    void forgetPWAction() override { events_.push_back("forgotten"); }

    LoginScreen& screen;

private:
    std::vector<std::string>& events_;
};

}  // namespace halvane::login
