#pragma once

#include "login/LoginScreen.h"
#include "util/Value.h"

#include <memory>
#include <optional>
#include <string>

namespace halvane::platform {
class Browser;
class DispatchQueue;
class FileStore;
class MainLoop;
class Preferences;
}  // namespace halvane::platform
namespace halvane::util {
class Log;
class NotificationCenter;
}  // namespace halvane::util
namespace halvane::session {
class HDCLUserConfig;
class KTKeyChain;
}  // namespace halvane::session
namespace halvane::service {
class HVRequstHelper;
}
namespace halvane::device {
class HVDeviceInfoHelper;
}
namespace halvane::tools {
class HVMobileConfigTool;
}

namespace halvane::login {

/// The login procedure behind LoginView: prefilled credentials, the auto-login switch, the login
/// request, the session, the personal certificate and the change to the main window.
///
/// Main thread. Owned by its view, which outlives it. Replies that arrive after it was destroyed are
/// dropped. Credentials are read and written on `credentialQueue`, one after the other, because the
/// secret store may make its caller wait; certificate tools run on `toolQueue` for the same reason.
class LoginFlow {
public:
    struct Collaborators {
        platform::MainLoop& mainLoop;
        platform::DispatchQueue& credentialQueue;  ///< serial
        platform::DispatchQueue& toolQueue;        ///< serial
        platform::Preferences& preferences;
        platform::FileStore& files;
        platform::Browser& browser;
        util::NotificationCenter& notifications;
        util::Log& log;
        session::HDCLUserConfig& user;
        session::KTKeyChain& keyChain;
        service::HVRequstHelper& requests;
        device::HVDeviceInfoHelper& device;
        tools::HVMobileConfigTool& profiles;
    };

    LoginFlow(LoginScreen& screen, Collaborators collaborators);
    ~LoginFlow();
    LoginFlow(const LoginFlow&) = delete;
    LoginFlow& operator=(const LoginFlow&) = delete;

    /// Once, when the controls stand: fills them from the stored credentials and preferences.
    void viewBuilt();
    /// When the view entered its window: automatic login, where it is on and a session is stored.
    void viewDidMoveToWindow();

    void loginAction();
    /// The person toggled the switch.
    void autoLoginAction();
    void forgetPWAction();
    /// Shows an alert when a field is empty. Always false; the login does not ask it.
    bool inputVerify();

    /// From the start of a login to its success; a refused or failed one leaves it set for good.
    [[nodiscard]] bool isLogining() const;

    /// Development values that nothing uses.
    [[nodiscard]] static std::string downLoadUrl();
    [[nodiscard]] static std::string certificatePW();

private:
    class Impl;
    std::shared_ptr<Impl> impl_;
};

}  // namespace halvane::login
