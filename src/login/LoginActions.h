#pragma once

namespace halvane::login {

/// What the view of the login asks of the procedure behind it. Main thread. Made for one view, owned by
/// it, and told of nothing after the view is gone.
class LoginActions {
public:
    virtual ~LoginActions() = default;

    /// Once, when the controls stand.
    virtual void viewBuilt() = 0;
    /// When the view entered its window.
    virtual void viewDidMoveToWindow() = 0;
    /// The button, or Enter in a field. Ignored while a login is under way.
    virtual void loginAction() = 0;
    /// The person toggled the switch.
    virtual void autoLoginAction() = 0;
    virtual void forgetPWAction() = 0;
};

}  // namespace halvane::login
