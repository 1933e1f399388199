#pragma once

#include "linux/PosixFileStore.h"
#include "linux/http/CurlTransport.h"
#include "platform/PackageInstaller.h"
#include "support/Eventually.h"
#include "support/LoopbackServer.h"
#include "support/ManualMainLoop.h"
#include "support/MemoryPreferences.h"
#include "support/RecordingLog.h"
#include "support/TemporaryDirectory.h"
#include "support/TestSigner.h"
#include "support/ThreadQueue.h"
#include "update/AppcastUpdater.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace halvane::test {

/// What a person would see of the update window, and what they do with it.
class FakeUpdateScreen final : public update::UpdateScreen {
public:
    void setScene(const update::UpdateScene& shown) override { scene = shown; }
    void present(Attention attention) override {
        isShown = true;
        hadKeyboard = attention == Attention::Keyboard;
        ++presented;
    }
    void dismiss() override { isShown = false; }

    update::UpdateScene scene;
    bool isShown = false;
    bool hadKeyboard = false;
    int presented = 0;
};

/// Keeps what it is given, and ends when the test says so.
class FakePackageInstaller final : public platform::PackageInstaller {
public:
    void install(const std::filesystem::path& package, const std::string& signature, Ended onEnd) override {
        packages.push_back(package);
        signatures.push_back(signature);
        ended = std::move(onEnd);
    }

    std::vector<std::filesystem::path> packages;
    std::vector<std::string> signatures;
    Ended ended;
};

/// A computer with version 1.0.0 and a company whose server offers 1.1.0, over real HTTP and real files. A test changes what the
/// server answers before it looks.
class UpdateStory {
public:
    static constexpr const char* kFeedPath = "/update/appcast.xml";
    static constexpr const char* kPackagePath = "/update/halvane_1.1.0_amd64.deb";

    UpdateStory();
    /// What runs on the worker uses what stands here.
    ~UpdateStory() {
        updater.reset();
        worker.reset();
    }
    UpdateStory(const UpdateStory&) = delete;
    UpdateStory& operator=(const UpdateStory&) = delete;

    /// The offer, as the feed's text; the members below are what it says.
    struct Offer {
        std::string version = "1.1.0";
        std::string package = "halvane";
        std::string architecture = "amd64";
        std::string minimumSystem = "12";
        std::string notes = "新的更新窗口";
        std::string url = kPackagePath;
        std::optional<std::size_t> length;
        std::optional<std::string> signature;
        std::string issued = "2026-11-23T12:00:00Z";
        std::string expires = "2026-11-30T12:00:00Z";
    };
    [[nodiscard]] std::string feedText(const Offer& offer) const;
    /// From now on the server has that feed, signed by the company.
    void publish(const Offer& offer) { replies[kFeedPath] = okReply(signer.signedFeed(feedText(offer))); }

    /// Looks, until nothing goes on any more.
    void settle();
    void check() {
        updater->checkForUpdates();
        settle();
    }
    void press() {
        screen->onPrimary();
        settle();
    }
    [[nodiscard]] std::size_t filesLeft() const;

    const TestSigner signer;
    const std::string package = std::string(300'000, 'p');
    std::map<std::string, std::string> replies;  ///< by path
    LoopbackServer server;
    TemporaryDirectory directory;
    ManualMainLoop* loop = nullptr;
    std::shared_ptr<platform::DispatchQueue> mainQueue;
    std::shared_ptr<ThreadQueue> worker = std::make_shared<ThreadQueue>();
    linux_http::CurlTransport transport;
    linux::PosixFileStore files;
    MemoryPreferences preferences;
    FakePackageInstaller installer;
    RecordingLog log;
    std::string now = "2026-11-23T13:00:00Z";
    std::string systemVersion = "12";
    int restarts = 0;
    FakeUpdateScreen* screen = nullptr;  ///< once there is one
    std::unique_ptr<update::AppcastUpdater> updater;

    /// As after a start of the program.
    void start();
};

}  // namespace halvane::test
