#pragma once

#include <string>

namespace halvane::login {

/// What the login procedure needs of its view. Main thread.
class LoginScreen {
public:
    enum class Look {
        LogIn,     ///< title "登录", theme orange, white text
        LoggingIn  ///< title "正在登录...", light grey, white text; the button keeps taking clicks
    };
    enum class Field { UserName, PassWord };

    virtual ~LoginScreen() = default;

    [[nodiscard]] virtual std::string text(Field field) const = 0;
    /// Counts as not typed. The cursor goes to the start of a text that begins with "@", else to its end.
    virtual void setText(Field field, const std::string& text) = 0;
    /// Whether the person changed the field since it was last set.
    [[nodiscard]] virtual bool isTyped(Field field) const = 0;

    [[nodiscard]] virtual bool autoLoginState() const = 0;
    /// Does not count as a toggle by the person.
    virtual void setAutoLoginState(bool on) = 0;
    /// Whether the person toggled the switch since the view was built.
    [[nodiscard]] virtual bool isAutoLoginToggled() const = 0;

    virtual void setTip(const std::string& text) = 0;
    virtual void setLook(Look look) = 0;
    /// Warning sheet titled "提示" with the text and one button "确定" on the application's first window.
    virtual void showAlertWithMsg(const std::string& text) = 0;
    /// Makes a new main window, keeps it, becomes its delegate, centres it and brings it to the front.
    virtual void showMainWindow() = 0;
};

}  // namespace halvane::login
