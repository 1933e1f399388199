#pragma once

#include "login/LoginFlow.h"
#include "platform/SingleInstance.h"
#include "util/Result.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

namespace halvane::device {
class CompanyAccess;
class HVDeviceInfoHelper;
class HVDeviceStatusMonitoring;
class HVDeviceUsageInfoManager;
}  // namespace halvane::device
namespace halvane::platform {
class DesktopNotifications;
class Directories;
class DispatchQueue;
class FileStore;
class HttpTransport;
class MainLoop;
class Preferences;
class Reachability;
class Updater;
}  // namespace halvane::platform
namespace halvane::service {
class HVRequstHelper;
}
namespace halvane::session {
class WorkAddressInfoHelper;
}
namespace halvane::tools {
class UninstallAuthorisation;
}
namespace halvane::update {
class UpdateScreen;
}

namespace halvane::app {

class HDCLProjectConfig;

/// Everything of the program that has no window, put together: the Linux side of each port, and the
/// session, service, device, tools and login objects above them. Main thread.
class Services {
public:
    struct Settings {
        util::Log& log;
        std::string serverBaseUrl;
        std::filesystem::path toolRoot;                  ///< where the system's command-line tools are looked up first
        std::filesystem::path resources;                 ///< files shipped with the program
        std::string language;                            ///< such as "zh-CN"
        std::function<void(const std::string&)> inform;  ///< shows the person a sentence
        std::function<std::unique_ptr<update::UpdateScreen>()> makeUpdateScreen;
        std::function<void()> restart;  ///< ends the program and begins the installed one
    };

    /// Errors are sentences for the person at the terminal, such as that there is no home directory.
    static util::Result<std::unique_ptr<Services>> make(const Settings& settings, std::shared_ptr<platform::MainLoop> mainLoop);

    /// Waits for what is being stored or revoked, at most 2 s, and ends every thread.
    ~Services();
    Services(const Services&) = delete;
    Services& operator=(const Services&) = delete;

    [[nodiscard]] platform::Reachability& reachability();
    [[nodiscard]] platform::SingleInstance& singleInstance();
    [[nodiscard]] platform::Updater& updater();
    [[nodiscard]] util::NotificationCenter& notifications();
    [[nodiscard]] util::Log& log();
    [[nodiscard]] session::HDCLUserConfig& user();
    [[nodiscard]] session::WorkAddressInfoHelper& workplaces();
    [[nodiscard]] service::HVRequstHelper& requests();
    [[nodiscard]] platform::Preferences& preferences();
    [[nodiscard]] platform::HttpTransport& transport();
    [[nodiscard]] platform::FileStore& files();
    [[nodiscard]] const platform::Directories& directories();
    [[nodiscard]] std::shared_ptr<platform::DispatchQueue> mainQueue();
    /// Concurrent, for work that would hold up the main thread.
    [[nodiscard]] std::shared_ptr<platform::DispatchQueue> workQueue();
    [[nodiscard]] HDCLProjectConfig& project();
    [[nodiscard]] const device::HVDeviceInfoHelper& device();
    [[nodiscard]] device::HVDeviceUsageInfoManager& sampler();
    [[nodiscard]] device::HVDeviceStatusMonitoring& monitoring();
    [[nodiscard]] device::CompanyAccess& companyAccess();
    [[nodiscard]] platform::DesktopNotifications& desktopNotifications();
    [[nodiscard]] std::string userAgent() const;

    /// `browser` outlives the flow.
    [[nodiscard]] std::unique_ptr<login::LoginFlow> makeLoginFlow(login::LoginScreen& screen, platform::Browser& browser);
    [[nodiscard]] std::unique_ptr<tools::UninstallAuthorisation> makeUninstallAuthorisation();

private:
    struct Parts;
    explicit Services(std::unique_ptr<Parts> parts);

    std::unique_ptr<Parts> parts_;
};

}  // namespace halvane::app
