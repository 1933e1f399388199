#include "login/LoginFlow.h"

#include "device/HVDeviceInfoHelper.h"
#include "login/CertificateFetch.h"
#include "platform/Browser.h"
#include "platform/MainLoop.h"
#include "platform/Preferences.h"
#include "service/HVRequstHelper.h"
#include "session/HDCLUserConfig.h"
#include "session/KTKeyChain.h"
#include "util/Json.h"
#include "util/Log.h"
#include "util/NotificationCenter.h"
#include "util/Redaction.h"
#include "util/Text.h"

#include <utility>

namespace halvane::login {

namespace {

constexpr std::chrono::milliseconds kAutoLoginDelay{100};
constexpr const char* kIsAutoLogin = "HDCL_ISAUTOLOGIN";
constexpr const char* kIsRemePassword = "HDCL_ISREMEPASSWORD";
constexpr const char* kLoginSuccess = "HDCL_Notification_LoginSuccess";
constexpr const char* kPasswordChangePath = "/updatepwd/index";
constexpr const char* kDevelopmentCertificatePath = "/static/admin/halvane/ad_cert/kelmarsh/kelmarsh.pfx";

constexpr auto kUserName = LoginScreen::Field::UserName;
constexpr auto kPassWord = LoginScreen::Field::PassWord;

std::string recordService(const std::string& prefix) { return prefix + ".clouddisk.usernamepassword"; }
std::string userNameKey(const std::string& prefix) { return prefix + ".clouddisk.username"; }
std::string passWordKey(const std::string& prefix) { return prefix + ".clouddisk.password"; }

}  // namespace

LoginFlow::LoginFlow(LoginScreen& screen, Collaborators collaborators)
    : screen_(screen), to_(std::move(collaborators)), alive_(std::make_shared<const bool>(true)) {}

LoginFlow::~LoginFlow() = default;

LoginFlow::Step LoginFlow::whileAlive(Step step) const {
    return [alive = std::weak_ptr(alive_), step = std::move(step)] {
        if (!alive.expired()) step();
    };
}

void LoginFlow::viewBuilt() {
    screen_.setText(kUserName, to_.deployment.mailSuffix);
    screen_.setAutoLoginState(true);
    readUsernamePassWordFromKeyChain();
    configRemeAutoLoginIsChecked();
}

void LoginFlow::readUsernamePassWordFromKeyChain() {
    to_.credentialQueue.async([this, alive = std::weak_ptr(alive_), &mainLoop = to_.mainLoop, &keyChain = to_.keyChain,
                               service = recordService(to_.deployment.keychainPrefix)] {
        auto lastUser = keyChain.loadInfo(service);
        mainLoop.async([this, alive, lastUser = std::move(lastUser)] {
            if (!alive.expired() && lastUser) applyLastUser(*lastUser);
        });
    });
}

void LoginFlow::applyLastUser(const util::Value& lastUser) {
    if (loginSent_) return;
    const auto userName = util::textOf(util::member(&lastUser, userNameKey(to_.deployment.keychainPrefix)));
    const auto passWord = util::textOf(util::member(&lastUser, passWordKey(to_.deployment.keychainPrefix)));
    // A password belongs to its user name: none is filled in beside a name that was typed.
    const bool nameTyped = screen_.isTyped(kUserName);
    if (!nameTyped) screen_.setText(kUserName, userName.value_or(""));
    if (!nameTyped && !screen_.isTyped(kPassWord)) screen_.setText(kPassWord, passWord.value_or(""));
    if (screen_.isAutoLoginToggled()) return;
    if (userName) screen_.setAutoLoginState(to_.preferences.boolean(kIsAutoLogin));
    configRemeAutoLoginIsChecked();
}

void LoginFlow::writeUsernamePassWordToKeyChain() {
    const auto& prefix = to_.deployment.keychainPrefix;
    to_.credentialQueue.async(
        [&keyChain = to_.keyChain, service = recordService(prefix),
         record = util::Dictionary{{userNameKey(prefix), screen_.text(kUserName)}, {passWordKey(prefix), screen_.text(kPassWord)}}] {
            keyChain.saveInfo(service, record);
        });
}

void LoginFlow::deleUsernamePassWordFromKeyChain() {
    to_.credentialQueue.async(
        [&keyChain = to_.keyChain, service = recordService(to_.deployment.keychainPrefix)] { keyChain.delInfo(service); });
}

void LoginFlow::configRemeAutoLoginIsChecked() {
    if (to_.preferences.has(kIsRemePassword)) screen_.setAutoLoginState(to_.preferences.boolean(kIsRemePassword));
    if (to_.preferences.has(kIsAutoLogin)) screen_.setAutoLoginState(to_.preferences.boolean(kIsAutoLogin));
}

void LoginFlow::viewDidMoveToWindow() {
    if (!to_.preferences.boolean(kIsAutoLogin) || !to_.user.user_isLogin()) return;
    updateUILogingin();
    to_.mainLoop.after(kAutoLoginDelay, whileAlive([this] { autoLoginCloudDisk(); }));
}

void LoginFlow::autoLoginCloudDisk() {
    updateUILogin();
    enterMainWindow();
}

void LoginFlow::loginAction() {
    if (!isLogining_) sendloginRequest();
}

void LoginFlow::sendloginRequest() {
    updateUILogingin();
    loginSent_ = true;
    util::Dictionary params{{"username", screen_.text(kUserName)}, {"password", screen_.text(kPassWord)}};
    to_.toolQueue.async(
        [this, alive = std::weak_ptr(alive_), &device = to_.device, &mainLoop = to_.mainLoop, params = std::move(params)]() mutable {
            params.set("mac", device.getMacAddress().value_or("") + "|");
            params.set("host_name", util::withoutLineFeeds(device.getLocalHostName().value_or("")));
            params.set("system", device.getSystemProductName().value_or(""));
            params.set("sn", device.getSerialNumber().value_or(""));
            params.set("token", "");
            mainLoop.async([this, alive, params = std::move(params)] {
                if (!alive.expired()) sendLogin(params);
            });
        });
}

void LoginFlow::sendLogin(const util::Dictionary& params) {
    to_.log.write(util::Json::encode(util::redacted(params)));
    to_.requests.loginWithParams(
        params,
        [this, alive = std::weak_ptr(alive_)](const util::Value& response) {
            if (!alive.expired()) loginAnswered(response);
        },
        [this, alive = std::weak_ptr(alive_)](const std::optional<util::Error>& error) {
            if (alive.expired()) return;
            if (error) to_.log.write("登陆出错 " + error->description);
            screen_.setTip("登陆出错");
        });
}

void LoginFlow::loginAnswered(const util::Value& response) {
    to_.log.write("登陆成功" + util::Json::encode(util::redacted(response)));
    // Before the code is looked at: what was typed last is what the next start offers, refused or not.
    writeUsernamePassWordToKeyChain();
    if (!service::HVRequstHelper::isAccepted(response)) {
        if (const auto msg = util::textOf(util::member(&response, "msg"))) screen_.setTip(*msg);
        return;
    }
    const util::Value* data = util::member(&response, "data");
    const auto* dictionary = data == nullptr ? nullptr : data->dictionary();
    installCertificateIfMissing(data,
                                [this, copy = dictionary == nullptr ? std::nullopt : std::optional(*dictionary)] { finishLogin(copy); });
}

void LoginFlow::installCertificateIfMissing(const util::Value* data, Step next) {
    const std::string userName = util::textOf(util::member(data, "user_name")).value_or("");
    if (userName.empty()) {
        next();
        return;
    }
    const std::string shortName = util::replaced(userName, to_.deployment.mailSuffix, "");
    const std::string typed = screen_.text(kUserName);
    to_.toolQueue.async([this, alive = std::weak_ptr(alive_), &device = to_.device, &mainLoop = to_.mainLoop, shortName,
                         requestName = typed.substr(0, typed.find('@')), passWord = screen_.text(kPassWord), next = std::move(next)] {
        const std::string listing = device.findCert().value_or("");
        const bool installed = !shortName.empty() && listing.find(shortName) != std::string::npos;
        mainLoop.async([this, alive, installed, requestName, passWord, next] {
            if (alive.expired()) return;
            if (!installed) to_.certificates.requestCertificateWithUserName(requestName, passWord);
            next();
        });
    });
}

void LoginFlow::finishLogin(const std::optional<util::Dictionary>& data) {
    saveConfig();
    to_.user.user_loginSuccessWithDic(data);
    updateUILogin();
    enterMainWindow();
}

void LoginFlow::saveConfig() {
    to_.preferences.set(kIsAutoLogin, screen_.autoLoginState());
    to_.preferences.flush();
}

void LoginFlow::enterMainWindow() {
    to_.notifications.post(kLoginSuccess);
    screen_.showMainWindow();
}

void LoginFlow::updateUILogin() {
    isLogining_ = false;
    screen_.setLook(LoginScreen::Look::LogIn);
}

void LoginFlow::updateUILogingin() {
    isLogining_ = true;
    screen_.setLook(LoginScreen::Look::LoggingIn);
}

void LoginFlow::autoLoginAction() { saveConfig(); }

void LoginFlow::forgetPWAction() {
    if (!to_.browser.open(to_.deployment.ssoBaseUrl + kPasswordChangePath)) to_.log.write("no browser could be opened");
}

bool LoginFlow::inputVerify() {
    if (screen_.text(kUserName).empty() || screen_.text(kPassWord).empty()) screen_.showAlertWithMsg("请输入用户名密码!");
    return false;
}

std::string LoginFlow::downLoadUrl() const { return to_.deployment.serverBaseUrl + kDevelopmentCertificatePath; }

}  // namespace halvane::login
