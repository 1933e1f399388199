#pragma once

#include "login/CertificateFetch.h"
#include "login/LoginFlow.h"
#include "platform/Browser.h"
#include "session/KTKeyChain.h"
#include "support/FakeAuthorization.h"
#include "support/FakeDevice.h"
#include "support/GoldenExchange.h"
#include "support/MemoryKeychain.h"
#include "support/ScriptedClient.h"
#include "tools/HVMobileConfigTool.h"
#include "util/KeyedArchive.h"
#include "util/NotificationCenter.h"
#include "util/PropertyList.h"

#include <memory>
#include <string>
#include <vector>

namespace halvane::login {

/// A login window without widgets: what a person typed and what they see.
class FakeScreen final : public LoginScreen {
public:
    explicit FakeScreen(std::vector<std::string>& events) : events_(&events) {}

    std::string text(Field field) const override { return field == Field::UserName ? userName : passWord; }
    void setText(Field field, const std::string& text) override {
        (field == Field::UserName ? userName : passWord) = text;
        (field == Field::UserName ? userNameTyped : passWordTyped) = false;
    }
    bool isTyped(Field field) const override { return field == Field::UserName ? userNameTyped : passWordTyped; }
    bool autoLoginState() const override { return autoLogin; }
    void setAutoLoginState(bool on) override { autoLogin = on; }
    bool isAutoLoginToggled() const override { return toggled; }
    void setTip(const std::string& text) override { events_->push_back("tip " + text); }
    void setLook(Look look) override { events_->push_back(look == Look::LogIn ? "idle" : "busy"); }
    void showAlertWithMsg(const std::string& text) override { events_->push_back("alert " + text); }
    void showMainWindow() override { events_->push_back("main window"); }

    std::string userName, passWord;
    bool userNameTyped = false, passWordTyped = false, autoLogin = false, toggled = false;

private:
    std::vector<std::string>* events_;
};

class FakeBrowser final : public platform::Browser {
public:
    bool open(const std::string& url) override {
        opened.push_back(url);
        return true;
    }
    std::vector<std::string> opened;
};

/// Everything around one login view, with verbs for what a person and the company server do.
/// `events` is what the person sees, in order, and the login notification.
class LoginStory {
public:
    LoginStory() {
        on.files.directories = {"/home/test/Caches"};
        on.transport.writeFile = [this](const std::filesystem::path& path, const util::Bytes& bytes) { on.files.files[path] = bytes; };
        device.launcher.outputs = {{"/usr/sbin/scutil", "chen-laptop\n"},
                                   {"/usr/bin/security", "     0 identities found\n"},
                                   {"/usr/bin/profiles", ""},
                                   {"/usr/sbin/networksetup", ""}};
        on.files.files["/home/test/Resources/brelton.mobileconfig"] = util::PropertyList::encode(
            util::Dictionary{{"PayloadContent", util::Value::List{util::Dictionary{{"PayloadIdentifier", "com.example.identity"}}}}});
        notifications.addObserver("HDCL_Notification_LoginSuccess", [this] {
            events.emplace_back("login success");
            // What the windows that hear this find.
            stateAtSuccess = std::string(on.user.user_isLogin() ? "session" : "no session") +
                             (on.preferences.saved.find("HDCL_ISAUTOLOGIN") == nullptr ? "" : ", switch saved");
        });
    }

    /// A start of the program up to the login view in its window.
    void start() {
        flow.reset();
        screen = FakeScreen(events);
        flow = std::make_unique<LoginFlow>(screen, collaborators());
        flow->viewBuilt();
        flow->viewDidMoveToWindow();
    }
    void type(const std::string& userName, const std::string& passWord) {
        screen.userName = userName;
        screen.passWord = passWord;
        screen.userNameTyped = screen.passWordTyped = true;
    }
    void signIn(const std::string& userName = "chen.xiao@example.com", const std::string& passWord = "Halvane-demo-1") {
        settle();
        type(userName, passWord);
        flow->loginAction();
        settle();
    }
    /// Answers the newest request and lets everything happen that follows without time passing.
    void answer(const util::Bytes& json) {
        on.transport.replyJson(on.transport.exchanges.size() - 1, json);
        settle();
    }
    void settle() { on.mainLoop->runPending(); }

    std::string lastUrl() { return on.transport.exchanges.empty() ? "none" : on.last().request.url; }
    std::string lastBody() { return on.last().request.body; }
    std::size_t requestCount() { return on.transport.exchanges.size(); }
    /// What the secret store holds, as "user password".
    std::string storedCredentials() {
        const auto stored = keyChain.loadInfo("com.example.halvane.clouddisk.usernamepassword");
        if (!stored) return "none";
        return util::printed(util::textOf(util::member(&*stored, "com.example.halvane.clouddisk.username"))) + " " +
               util::printed(util::textOf(util::member(&*stored, "com.example.halvane.clouddisk.password")));
    }
    void storeCredentials(const util::Value& userName, const util::Value& passWord) {
        keyChain.saveInfo(
            "com.example.halvane.clouddisk.usernamepassword",
            util::Dictionary{{"com.example.halvane.clouddisk.username", userName}, {"com.example.halvane.clouddisk.password", passWord}});
    }

    LoginFlow::Collaborators collaborators() {
        return {*on.mainLoop,
                *on.mainLoop,
                *on.mainLoop,
                on.preferences,
                browser,
                notifications,
                device.log,
                on.user,
                keyChain,
                on.requests,
                device.helper,
                certificates,
                {test::ScriptedClient::kBase, "@example.com", "http://sso.test", "com.example.halvane"}};
    }

    std::vector<std::string> events;
    std::string stateAtSuccess;
    test::ScriptedClient on;
    test::FakeDevice device;
    test::MemoryKeychain keychain;
    session::KTKeyChain keyChain{keychain, device.log};
    FakeBrowser browser;
    util::NotificationCenter notifications;
    test::FakeAdministrator administrator;
    tools::HVMobileConfigTool profiles{{on.files, on.directories, device.launcher, device.helper, device.log, administrator.collaborators}};
    CertificateFetch certificates{{*on.mainLoop, on.files, device.log, on.user, on.requests, device.helper, profiles}};
    FakeScreen screen{events};
    std::unique_ptr<LoginFlow> flow;
};

}  // namespace halvane::login
