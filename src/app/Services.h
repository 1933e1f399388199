#pragma once

#include "login/LoginFlow.h"
#include "platform/SingleInstance.h"
#include "util/Result.h"

#include <filesystem>
#include <memory>
#include <string>

namespace halvane::platform {
class MainLoop;
class Reachability;
class Updater;
}  // namespace halvane::platform

namespace halvane::app {

/// Everything of the program that has no window, put together: the Linux side of each port, and the
/// session, service, device, tools and login objects above them. Main thread.
class Services {
public:
    struct Settings {
        std::string serverBaseUrl;
        std::filesystem::path toolRoot;   ///< where the system's command-line tools are looked up first
        std::filesystem::path resources;  ///< files shipped with the program
        std::string language;             ///< such as "zh-CN"
    };

    /// Errors are sentences for the person at the terminal, such as that there is no home directory.
    static util::Result<std::unique_ptr<Services>> make(const Settings& settings, std::shared_ptr<platform::MainLoop> mainLoop);

    /// Waits for what is being stored, at most 2 s, and ends every thread.
    ~Services();
    Services(const Services&) = delete;
    Services& operator=(const Services&) = delete;

    [[nodiscard]] platform::Reachability& reachability();
    [[nodiscard]] platform::SingleInstance& singleInstance();
    [[nodiscard]] platform::Updater& updater();
    [[nodiscard]] util::NotificationCenter& notifications();
    [[nodiscard]] util::Log& log();
    [[nodiscard]] session::HDCLUserConfig& user();

    /// `browser` outlives the flow.
    [[nodiscard]] std::unique_ptr<login::LoginFlow> makeLoginFlow(login::LoginScreen& screen, platform::Browser& browser);

private:
    struct Parts;
    explicit Services(std::unique_ptr<Parts> parts);

    std::unique_ptr<Parts> parts_;
};

}  // namespace halvane::app
