#pragma once

#include "login/LoginActions.h"
#include "login/LoginScreen.h"
#include "util/Result.h"
#include "util/Value.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace halvane::platform {
class Browser;
class DispatchQueue;
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

namespace halvane::login {

class CertificateFetch;

/// The login procedure behind LoginView: prefilled credentials, the auto-login switch, the login
/// request, the session, and the change to the main window.
///
/// Main thread. Owned by its view, which outlives it; what arrives after it was destroyed is dropped.
/// The secret store and the system's tools may make their caller wait, so they are asked on queues:
/// credentials are read and written on `credentialQueue`, one after the other, and facts and the
/// certificate listing are gathered on `toolQueue`. Main loop, device and key chain must outlive what
/// waits on those queues.
class LoginFlow final : public LoginActions {
public:
    /// What differs from company to company.
    struct Deployment {
        std::string serverBaseUrl;
        std::string mailSuffix;      ///< "@" and the company's mail domain
        std::string ssoBaseUrl;      ///< of the password-change page
        std::string keychainPrefix;  ///< reverse domain, without a dot at its end
    };
    struct Collaborators {
        platform::MainLoop& mainLoop;
        platform::DispatchQueue& credentialQueue;  ///< serial
        platform::DispatchQueue& toolQueue;        ///< serial
        platform::Preferences& preferences;
        platform::Browser& browser;
        util::NotificationCenter& notifications;
        util::Log& log;
        session::HDCLUserConfig& user;
        session::KTKeyChain& keyChain;
        service::HVRequstHelper& requests;
        device::HVDeviceInfoHelper& device;
        CertificateFetch& certificates;
        Deployment deployment;
    };

    LoginFlow(LoginScreen& screen, Collaborators collaborators);
    ~LoginFlow() override;
    LoginFlow(const LoginFlow&) = delete;
    LoginFlow& operator=(const LoginFlow&) = delete;

    /// Once, when the controls stand: fills them from the preferences now, and from the stored
    /// credentials when those have arrived, never over something the person typed meanwhile.
    void viewBuilt() override;
    /// When the view entered its window: automatic login, where it is on and a session is stored.
    void viewDidMoveToWindow() override;

    void loginAction() override;
    /// The person toggled the switch.
    void autoLoginAction() override;
    void forgetPWAction() override;
    /// Shows an alert when a field is empty. Always false; the login does not ask it.
    bool inputVerify();
    /// Forgets the stored credentials. No flow does.
    void deleUsernamePassWordFromKeyChain();

    /// From the start of a login to its success; a refused or failed one leaves it set for good.
    [[nodiscard]] bool isLogining() const { return isLogining_; }

    /// Development values that nothing uses.
    [[nodiscard]] std::string downLoadUrl() const;
    [[nodiscard]] std::string certificatePW() const { return "tarnelk.quopse"; }

private:
    using Step = std::function<void()>;

    void readUsernamePassWordFromKeyChain();
    void applyLastUser(const util::Value& lastUser);
    void writeUsernamePassWordToKeyChain();
    void configRemeAutoLoginIsChecked();

    void sendloginRequest();
    void sendLogin(const util::Dictionary& params);
    void loginAnswered(const util::Value& response);
    void installCertificateIfMissing(const util::Value* data, Step next);
    void finishLogin(const std::optional<util::Dictionary>& data);
    void saveConfig();
    void autoLoginCloudDisk();
    void updateUILogin();
    void updateUILogingin();
    void enterMainWindow();

    /// `step`, unless this object is gone by then.
    [[nodiscard]] Step whileAlive(Step step) const;

    LoginScreen& screen_;
    Collaborators to_;
    bool isLogining_ = false;
    bool loginSent_ = false;  // credentials that arrive later would overwrite what was sent
    std::shared_ptr<const bool> alive_;
};

}  // namespace halvane::login
