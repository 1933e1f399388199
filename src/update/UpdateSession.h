#pragma once

#include "update/FeedCheck.h"
#include "update/PackageDownload.h"
#include "update/UpdateScreen.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace halvane::platform {
class PackageInstaller;
}

namespace halvane::update {

/// The update as a person goes through it, in one window: check, offer, download, verification, installation, restart. Nothing is
/// fetched before the person says so, and nothing is installed before they say so once more. Whatever is refused ends in a scene
/// that says why, and can be tried again from the check on.
///
/// Main thread. Closing the window ends a check and a download, and puts off an offer. What is downloaded waits to be installed, and
/// an installation goes on: its end brings the window back. A package that was put off is looked up in the feed before it is offered again.
/// `screen` and `installer` outlive it.
class UpdateSession {
public:
    struct Collaborators {
        std::function<std::unique_ptr<FeedCheck>()> makeCheck;
        std::function<std::unique_ptr<PackageDownload>()> makeDownload;
        platform::PackageInstaller& installer;
        util::Log& log;
        std::function<void()> restart;  ///< ends the program and begins the installed one
        std::string installedVersion;
    };

    UpdateSession(UpdateScreen& screen, Collaborators collaborators);
    ~UpdateSession();
    UpdateSession(const UpdateSession&) = delete;
    UpdateSession& operator=(const UpdateSession&) = delete;

    /// The person wants to know. Where something goes on already, or waits for an answer, that comes to the front.
    void check();
    /// A quiet check found `item`. Nothing happens while the window is in use.
    void offer(const UpdateItem& item);

private:
    enum class Stage { Idle, Checking, Offer, Downloading, Ready, Installing, Installed, UpToDate, Failed };

    void enter(Stage stage, const UpdateScene& scene);
    void beginCheck();
    void answered(const FeedCheck::Answer& answer);
    void download();
    void downloaded(const util::Result<std::filesystem::path>& outcome);
    void install();
    void ended(const util::Result<void>& outcome);
    void fail(const util::Error& error);
    void primary();
    void closed();

    UpdateScreen& screen_;
    const Collaborators to_;
    Stage stage_ = Stage::Idle;
    /// A package that was verified, and where it stands.
    struct Ready {
        UpdateItem item;
        std::filesystem::path package;
    };

    std::optional<UpdateItem> item_;
    std::optional<Ready> ready_;
    std::unique_ptr<FeedCheck> check_;
    std::unique_ptr<PackageDownload> download_;
    std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);
};

}  // namespace halvane::update
