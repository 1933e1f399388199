#include "app/Services.h"

#include "app/Deployment.h"
#include "app/HDCLProjectConfig.h"
#include "device/CompanyAccess.h"
#include "device/HVDeviceInfoHelper.h"
#include "device/HVDeviceStatusMonitoring.h"
#include "device/HVDeviceUsageInfoManager.h"
#include "linux/FreedesktopNotifications.h"
#include "linux/PkexecPackageInstaller.h"
#include "linux/PolkitAuthorization.h"
#include "linux/PosixFileStore.h"
#include "linux/PosixProcessLauncher.h"
#include "linux/PropertyListPreferences.h"
#include "linux/SecretServiceKeychain.h"
#include "linux/UnixSingleInstance.h"
#include "linux/XdgDirectories.h"
#include "linux/base/AsioDispatchQueues.h"
#include "linux/base/NetworkManagerReachability.h"
#include "linux/device/LinuxDeviceRegistry.h"
#include "linux/device/LinuxNetworkInterfaces.h"
#include "linux/device/LinuxSystemControl.h"
#include "linux/device/LinuxSystemCounters.h"
#include "linux/device/LinuxSystemVersion.h"
#include "linux/http/CurlTransport.h"
#include "login/CertificateFetch.h"
#include "platform/MainLoop.h"
#include "service/APIClient.h"
#include "service/HVRequstHelper.h"
#include "session/HDCLUserConfig.h"
#include "session/KTKeyChain.h"
#include "session/WorkAddressInfoHelper.h"
#include "tools/HVMobileConfigTool.h"
#include "tools/UninstallAuthorisation.h"
#include "update/AppcastUpdater.h"
#include "update/UnavailableUpdater.h"
#include "util/NotificationCenter.h"
#include "util/SharedInstance.h"

#include <chrono>
#include <cstdio>
#include <future>
#include <utility>

namespace halvane::app {

namespace {

/// Empty when it was removed under us.
std::string currentDirectory() {
    std::error_code gone;
    return std::filesystem::current_path(gone).string();
}

}  // namespace

/// In order of making: each stands on those before it.
struct Services::Parts {
    Parts(const Settings& settings, std::shared_ptr<platform::MainLoop> loop, linux::XdgDirectories places)
        : mainLoop(std::move(loop)),
          log(settings.log),
          directories(std::move(places)),
          preferences(files, directories.configuration() / "preferences.plist", log),
          launcher(std::make_unique<linux::PosixProcessLauncher>(settings.toolRoot)),
          reachability(*mainLoop),
          client({transport, mainLoop, user, directories, reachability, userAgent, settings.language}),
          requests(client, settings.serverBaseUrl),
          serverBaseUrl(settings.serverBaseUrl),
          updater(makeUpdater(settings)) {}

    [[nodiscard]] std::unique_ptr<platform::Updater> makeUpdater(const Settings& settings);

    const std::shared_ptr<platform::MainLoop> mainLoop;
    const std::string userAgent = std::string("Halvane/") + Deployment::kVersion;
    util::Log& log;
    linux::PosixFileStore files;
    const linux::XdgDirectories directories;
    linux::PropertyListPreferences preferences;
    linux::SecretServiceKeychain keychain{log};
    const linux::SystemFiles systemFiles;
    linux::LinuxDeviceRegistry registry{systemFiles, linux::HostnamedClient()};
    linux::LinuxSystemControl control{systemFiles};
    linux::LinuxSystemVersion version{systemFiles};
    linux::LinuxSystemCounters counters{systemFiles};
    linux::LinuxNetworkInterfaces interfaces{systemFiles};
    linux_http::CurlTransport transport;
    linux::PolkitAuthorization authorization{linux::ToolRoot(Deployment::kInstalledTools), log};
    std::unique_ptr<linux::PosixProcessLauncher> launcher;
    linux::NetworkManagerReachability reachability;
    std::unique_ptr<linux::UnixSingleInstance> singleInstance =
        std::make_unique<linux::UnixSingleInstance>(directories.temporary(), *mainLoop, log);
    std::unique_ptr<linux::AsioDispatchQueues> queues = std::make_unique<linux::AsioDispatchQueues>();
    std::shared_ptr<platform::DispatchQueue> credentialQueue = queues->makeSerial("com.halvane.credentials");
    std::shared_ptr<platform::DispatchQueue> toolQueue = queues->makeSerial("com.halvane.tools");
    // Of its own, because a certificate's import may keep the tools busy for long.
    std::shared_ptr<platform::DispatchQueue> uninstallQueue = queues->makeSerial("com.halvane.uninstall");
    // Of its own, because installing takes as long as the person and the package manager do; serial, so that what an ended download
    // leaves to be done is done before the next one begins.
    std::shared_ptr<platform::DispatchQueue> updateQueue = queues->makeSerial("com.halvane.update");
    std::shared_ptr<platform::DispatchQueue> workQueue = queues->makeConcurrent("com.halvane.work");
    linux::FreedesktopNotifications desktopNotifications{queues->makeSerial("com.halvane.notifications"), log};

    util::NotificationCenter notifications;
    HDCLProjectConfig project{Deployment::kVersion};
    session::HDCLUserConfig user{preferences, files, directories};
    session::WorkAddressInfoHelper workplaces{preferences};
    session::KTKeyChain keyChain{keychain, log};
    service::APIClient client;
    service::HVRequstHelper requests;
    device::HVDeviceInfoHelper device{{*launcher, registry, control, version, counters, interfaces, log,
                                       [](std::string_view text) { std::fwrite(text.data(), 1, text.size(), stdout); }}};
    device::HVDeviceUsageInfoManager sampler{{*mainLoop, counters, device, log}};
    device::HVDeviceStatusMonitoring monitoring{{mainLoop, *workQueue, user, requests, device}};
    device::CompanyAccess companyAccess{{*toolQueue, device}};
    tools::HVMobileConfigTool profiles{
        {files, directories, *launcher, device, log, {authorization, *mainLoop, notifications, log, [] { return currentDirectory(); }}}};
    login::CertificateFetch certificates{{*toolQueue, files, log, user, requests, device, profiles}};
    std::string serverBaseUrl;
    std::unique_ptr<platform::PackageInstaller> installer =
        std::make_unique<linux::PkexecPackageInstaller>(linux::PkexecPackageInstaller::Collaborators{
            std::string(Deployment::kInstalledTools) + "/install-update", linux::PkexecChild(), updateQueue, mainLoop});
    std::unique_ptr<platform::Updater> updater;
};

std::unique_ptr<platform::Updater> Services::Parts::makeUpdater(const Settings& settings) {
    const auto key = util::PublicKey::fromBase64(Deployment::kUpdatePublicKey);
    if (!key) return std::make_unique<update::UnavailableUpdater>(log, settings.inform);
    const util::Dictionary system = version.propertyList();
    const util::Value* systemVersion = system.find("ProductVersion");
    return std::make_unique<update::AppcastUpdater>(update::AppcastUpdater::Collaborators{
        .transport = transport,
        .preferences = preferences,
        .files = files,
        .installer = *installer,
        .log = log,
        .mainQueue = mainLoop,
        .worker = updateQueue,
        .directory = directories.caches() / "updates",
        .source = {.feedUrl = Deployment::kUpdateFeedUrl, .key = *key, .userAgent = userAgent},
        .client = {.package = Deployment::kPackage,
                   .version = Deployment::kVersion,
                   .architecture = Deployment::kArchitecture,
                   .systemVersion = util::textOf(systemVersion).value_or("")},
        .now = [] { return std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now()); },
        .makeScreen = settings.makeUpdateScreen,
        .restart = settings.restart});
}

util::Result<std::unique_ptr<Services>> Services::make(const Settings& settings, std::shared_ptr<platform::MainLoop> mainLoop) {
    auto directories = linux::XdgDirectories::locate(settings.resources);
    if (!directories) return directories.error();
    return std::unique_ptr<Services>(new Services(std::make_unique<Parts>(settings, std::move(mainLoop), *std::move(directories))));
}

Services::Services(std::unique_ptr<Parts> parts) : parts_(std::move(parts)) {
    util::SharedInstance<HDCLProjectConfig>::set(&parts_->project);
    util::SharedInstance<session::HDCLUserConfig>::set(&parts_->user);
    util::SharedInstance<service::APIClient>::set(&parts_->client);
    util::SharedInstance<device::HVDeviceUsageInfoManager>::set(&parts_->sampler);
    util::SharedInstance<device::HVDeviceStatusMonitoring>::set(&parts_->monitoring);
}

Services::~Services() {
    // From now on nobody would follow a later start's wish: it must find no running client.
    parts_->singleInstance.reset();
    // An installation goes on without us; nobody waits for it any more.
    parts_->updater.reset();
    parts_->installer.reset();
    // A password that was typed a moment ago is still on its way to the store, a locked computer's certificate
    // out of it.
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(2);
    for (const auto& queue : {parts_->credentialQueue, parts_->toolQueue}) {
        const auto done = std::make_shared<std::promise<void>>();
        queue->async([done] { done->set_value(); });
        (void)done->get_future().wait_until(end);
    }
    // Blocks and terminations use what stands below them. A block that runs is waited for, as long as its tools take: what
    // it is in the middle of, such as a network that is off and not yet on again, must not be left so.
    parts_->queues.reset();
    parts_->launcher.reset();
    util::SharedInstance<HDCLProjectConfig>::set(nullptr);
    util::SharedInstance<session::HDCLUserConfig>::set(nullptr);
    util::SharedInstance<service::APIClient>::set(nullptr);
    util::SharedInstance<device::HVDeviceUsageInfoManager>::set(nullptr);
    util::SharedInstance<device::HVDeviceStatusMonitoring>::set(nullptr);
}

platform::Reachability& Services::reachability() { return parts_->reachability; }
platform::SingleInstance& Services::singleInstance() { return *parts_->singleInstance; }
platform::Updater& Services::updater() { return *parts_->updater; }
util::NotificationCenter& Services::notifications() { return parts_->notifications; }
util::Log& Services::log() { return parts_->log; }
session::HDCLUserConfig& Services::user() { return parts_->user; }
session::WorkAddressInfoHelper& Services::workplaces() { return parts_->workplaces; }
service::HVRequstHelper& Services::requests() { return parts_->requests; }
platform::Preferences& Services::preferences() { return parts_->preferences; }
platform::HttpTransport& Services::transport() { return parts_->transport; }
platform::FileStore& Services::files() { return parts_->files; }
const platform::Directories& Services::directories() { return parts_->directories; }
std::shared_ptr<platform::DispatchQueue> Services::mainQueue() { return parts_->mainLoop; }
std::shared_ptr<platform::DispatchQueue> Services::workQueue() { return parts_->workQueue; }
HDCLProjectConfig& Services::project() { return parts_->project; }
const device::HVDeviceInfoHelper& Services::device() { return parts_->device; }
device::HVDeviceUsageInfoManager& Services::sampler() { return parts_->sampler; }
device::HVDeviceStatusMonitoring& Services::monitoring() { return parts_->monitoring; }
device::CompanyAccess& Services::companyAccess() { return parts_->companyAccess; }
platform::DesktopNotifications& Services::desktopNotifications() { return parts_->desktopNotifications; }
std::string Services::userAgent() const { return parts_->userAgent; }

std::unique_ptr<tools::UninstallAuthorisation> Services::makeUninstallAuthorisation() {
    Parts& my = *parts_;
    return std::make_unique<tools::UninstallAuthorisation>(
        tools::UninstallAuthorisation::Collaborators{*my.uninstallQueue, my.mainLoop, my.user, my.requests, my.device});
}

std::unique_ptr<login::LoginFlow> Services::makeLoginFlow(login::LoginScreen& screen, platform::Browser& browser) {
    Parts& my = *parts_;
    return std::make_unique<login::LoginFlow>(
        screen,
        login::LoginFlow::Collaborators{*my.mainLoop,
                                        *my.credentialQueue,
                                        *my.toolQueue,
                                        my.preferences,
                                        browser,
                                        my.notifications,
                                        my.log,
                                        my.user,
                                        my.keyChain,
                                        my.requests,
                                        my.device,
                                        my.certificates,
                                        {my.serverBaseUrl, Deployment::kMailSuffix, Deployment::kSsoBaseUrl, Deployment::kKeychainPrefix}});
}

}  // namespace halvane::app
