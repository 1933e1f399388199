#pragma once

#include "platform/Updater.h"
#include "update/UpdateSession.h"

#include <memory>

namespace halvane::platform {
class HttpTransport;
}

namespace halvane::update {

/// The updater by a signed feed. Each check fetches the feed anew. The delegate hears of `checkForUpdateInformation` alone; an
/// update that is found in the background is offered in the same window in which an interactive check runs, unless that is in use.
///
/// Main thread, where the answers come. Nothing of it runs before the first check. Everything handed over outlives it, also what
/// waits on `worker`.
class AppcastUpdater final : public platform::Updater {
public:
    struct Collaborators {
        platform::HttpTransport& transport;
        platform::Preferences& preferences;
        platform::FileStore& files;
        platform::PackageInstaller& installer;
        util::Log& log;
        std::shared_ptr<platform::DispatchQueue> mainQueue;
        std::shared_ptr<platform::DispatchQueue> worker;  ///< serial
        std::filesystem::path directory;                  ///< of the downloaded package; nothing else stands there
        UpdateSource source;
        InstalledClient client;
        std::function<Appcast::Instant()> now;
        std::function<std::unique_ptr<UpdateScreen>()> makeScreen;
        std::function<void()> restart;
    };

    explicit AppcastUpdater(Collaborators collaborators);
    ~AppcastUpdater() override;

    void setDelegate(Delegate delegate) override { delegate_ = std::move(delegate); }
    void checkForUpdatesInBackground() override;
    void checkForUpdateInformation() override;
    void checkForUpdates() override;

private:
    [[nodiscard]] std::unique_ptr<FeedCheck> makeCheck();
    [[nodiscard]] std::unique_ptr<PackageDownload> makeDownload();
    [[nodiscard]] const std::shared_ptr<platform::HttpSession>& http();
    [[nodiscard]] UpdateSession& session();

    const Collaborators to_;
    Delegate delegate_;
    std::shared_ptr<platform::HttpSession> http_;
    std::unique_ptr<UpdateScreen> screen_;
    std::unique_ptr<UpdateSession> session_;  ///< after the screen that it shows itself on
    std::unique_ptr<FeedCheck> background_;
    std::unique_ptr<FeedCheck> information_;
};

}  // namespace halvane::update
