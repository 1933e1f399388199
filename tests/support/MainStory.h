#pragma once

#include "device/CompanyAccess.h"
#include "device/HVDeviceStatusMonitoring.h"
#include "device/HVDeviceUsageInfoManager.h"
#include "device/HVStatusBarConfig.h"
#include "platform/DispatchQueue.h"
#include "session/WorkAddressInfoHelper.h"
#include "support/FakeDevice.h"
#include "support/RecordingLog.h"
#include "support/RecordingNotifications.h"
#include "support/RecordingStatusBar.h"
#include "support/RecordingUpdater.h"
#include "support/ScriptedClient.h"
#include "tools/UnInstallAlertView.h"
#include "tools/UninstallAuthorisation.h"
#include "tools/UpdateVersionPanel.h"
#include "ui/main/AvatarStore.h"
#include "ui/main/MainView.h"
#include "ui/main/MainWindow.h"
#include "ui/main/SelectAddressWindow.h"
#include "ui/main/SidePanels.h"
#include "util/NotificationCenter.h"

#include <QApplication>
#include <QWidget>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace halvane::test {

/// What the main window needs, over a scripted company server, a clock that moves when told and a computer
/// of the test's own. Main windows are made and shown as a login makes them.
struct MainStory {
    MainStory() { signIn(); }

    void signIn(const util::Dictionary& more = {}) {
        util::Dictionary data{{"job_number", "0417"},   {"token", "t-1"},
                              {"numId", "7"},           {"user_name", "chen.xiao@example.com"},
                              {"nick_name", "陈晓"},    {"department_name", "信息技术部"},
                              {"work_address", "SL"},   {"email", "chen.xiao@example.com"},
                              {"ad_cert_name", "c.pfx"}};
        for (const auto& [key, value] : more) data.set(key, value);
        company.user.user_loginSuccessWithDic(data);
    }

    [[nodiscard]] std::unique_ptr<ui::MainView> makeMainView() {
        return std::make_unique<ui::MainView>(ui::MainView::Collaborators{
            .workplaces = workplaces,
            .requests = company.requests,
            .log = log,
            .menu = {.user = company.user,
                     .updater = updater,
                     .notifications = notifications,
                     .avatars = avatars,
                     .panels = panels,
                     .showLoginWindow = [this] { events.push_back("login window"); }},
            .device = {sampler, device.helper, facts, company.mainLoop},
            .monitoring = monitoring,
            .companyAccess = companyAccess,
            .desktopNotifications = desktopNotifications,
            .statusBar = statusBarConfig,
            .makeUninstallAlert =
                [this] {
                    return std::make_unique<tools::UnInstallAlertView>(
                        std::make_unique<tools::UninstallAuthorisation>(tools::UninstallAuthorisation::Collaborators{
                            *company.mainLoop, company.mainLoop, company.user, company.requests, device.helper}));
                },
            .uninstallAfterLogin = [this] { events.push_back("uninstall after login"); }});
    }
    [[nodiscard]] std::unique_ptr<ui::MainWindow> makeMainWindow() {
        return std::make_unique<ui::MainWindow>([this] { return makeMainView(); });
    }

    /// The control of that name below `root`, or an exception.
    template <typename T = QWidget>
    static T& control(const QWidget& root, const char* name) {
        auto* found = dynamic_cast<T*>(root.findChild<QWidget*>(QLatin1String(name)));
        if (!found) throw std::logic_error(std::string("no control ") + name);
        return *found;
    }
    static std::string focused() {
        const QWidget* widget = QApplication::focusWidget();
        if (!widget) return "nothing";
        return (widget->objectName().isEmpty() ? widget->accessibleName() : widget->objectName()).toStdString();
    }

    std::vector<std::string> events;
    int versionPanelsMade = 0;
    ScriptedClient company;
    FakeDevice device;
    RecordingLog log;
    util::NotificationCenter notifications;
    RecordingUpdater updater{events};
    ManualMainLoop facts;  ///< where the facts of the computer are read
    RecordingStatusBar statusBar;
    device::HVStatusBarConfig statusBarConfig{statusBar};
    device::HVDeviceUsageInfoManager sampler{{*company.mainLoop, device, device.helper, log}};
    device::HVDeviceStatusMonitoring monitoring{{company.mainLoop, facts, company.user, company.requests, device.helper}};
    device::CompanyAccess companyAccess{{*company.mainLoop, device.helper}};
    RecordingNotifications desktopNotifications;
    session::WorkAddressInfoHelper workplaces{company.preferences};
    ui::AvatarStore avatars{{.transport = company.transport,
                             .mainQueue = company.mainLoop,
                             .worker = company.mainLoop,
                             .files = company.files,
                             .directories = company.directories,
                             .log = log,
                             .userAgent = "Halvane/1.0"}};
    ui::SidePanels panels{[this] {
                              ++versionPanelsMade;
                              return std::make_unique<tools::UpdateVersionPanel>(updater, log, "1.0.0");
                          },
                          [this] {
                              return std::make_unique<ui::SelectAddressWindow>(ui::SelectAddressWindow::Collaborators{
                                  company.user, workplaces, company.requests, company.preferences, log});
                          }};
};

}  // namespace halvane::test
