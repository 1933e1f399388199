#include "UpdateStory.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace halvane::test {

namespace {

std::string pathOf(const std::string& request) {
    const auto begin = request.find(' ') + 1;
    return request.substr(begin, request.find(' ', begin) - begin);
}

}  // namespace

UpdateStory::UpdateStory()
    : server([this](LoopbackConnection& connection) {
          for (auto request = connection.readRequest(); !request.empty(); request = connection.readRequest()) {
              const auto found = replies.find(pathOf(request));
              const auto reply = found == replies.end() ? "HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n" : found->second;
              if (!connection.send(reply) || reply.find("Connection: close") != std::string::npos) return;
          }
      }) {
    auto manual = std::make_shared<ManualMainLoop>();
    loop = manual.get();
    mainQueue = std::move(manual);
    replies[kPackagePath] = okReply(package);
    publish({});
    start();
}

void UpdateStory::start() {
    updater.reset();
    screen = nullptr;
    updater = std::make_unique<update::AppcastUpdater>(update::AppcastUpdater::Collaborators{
        .transport = transport,
        .preferences = preferences,
        .files = files,
        .installer = installer,
        .log = log,
        .mainQueue = mainQueue,
        .worker = worker,
        .directory = directory.path() / "updates",
        .source = {.feedUrl = server.url(kFeedPath), .key = *util::PublicKey::fromBase64(signer.publicKey()), .userAgent = "Halvane/1.0.0"},
        .client = {.package = "halvane", .version = "1.0.0", .architecture = "amd64", .systemVersion = systemVersion},
        .now = [this] { return *update::Appcast::instantOf(now); },
        .makeScreen =
            [this] {
                auto made = std::make_unique<FakeUpdateScreen>();
                screen = made.get();
                return made;
            },
        .restart = [this] { ++restarts; }});
}

std::string UpdateStory::feedText(const Offer& offer) const {
    return fmt::format(R"(<?xml version="1.0" encoding="UTF-8"?>
<rss version="2.0" xmlns:halvane="urn:halvane:update">
  <channel>
    <title>Halvane</title>
    <halvane:issued>{}</halvane:issued>
    <halvane:expires>{}</halvane:expires>
    <item>
      <title>Halvane {}</title>
      <description>{}</description>
      <halvane:minimumSystem>{}</halvane:minimumSystem>
      <enclosure url="{}" length="{}" type="application/vnd.debian.binary-package" halvane:package="{}" halvane:version="{}" halvane:architecture="{}" halvane:signature="{}"/>
    </item>
  </channel>
</rss>
)",
                       offer.issued, offer.expires, offer.version, offer.notes, offer.minimumSystem, offer.url,
                       offer.length.value_or(package.size()), offer.package, offer.version, offer.architecture,
                       offer.signature.value_or(signer.sign(package)));
}

void UpdateStory::settle() {
    // Until the window waits for the person; a quiet check has no window, and is awaited by what it brings about.
    EXPECT_TRUE(eventually([this] {
        loop->runPending();
        return screen != nullptr && (!screen->scene.isBusy || (installer.ended && screen->scene.heading.find("安装") != std::string::npos));
    }));
}

std::size_t UpdateStory::filesLeft() const {
    std::size_t count = 0;
    std::error_code none;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(directory.path(), none))
        count += entry.is_regular_file() ? 1 : 0;
    return count;
}

}  // namespace halvane::test
