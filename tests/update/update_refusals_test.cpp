#include "UpdateStory.h"

#include "update/UpdateTexts.h"
#include "util/UpdateError.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iostream>

namespace halvane::update {
namespace {

using test::okReply;
using test::UpdateStory;
using util::UpdateError;

/// What is wrong, and what it is called. `feed` and `package` change the company's server before the person looks.
struct Refusal {
    const char* name;
    UpdateError expected;
    std::function<void(UpdateStory&)> arrange;
};

std::string redirectTo(const std::string& location) {
    return "HTTP/1.1 302 Found\r\nLocation: " + location + "\r\nContent-Length: 0\r\n\r\n";
}

/// Every scene of a refusal is the same but for its reason, which is a sentence of its own.
void expectRefused(UpdateStory& story, const Refusal& row) {
    SCOPED_TRACE(row.name);
    const auto reason = UpdateTexts::reason(util::updateError(row.expected, ""));
    EXPECT_EQ(story.screen->scene.heading, "没有更新");
    EXPECT_EQ(story.screen->scene.text, reason);
    EXPECT_TRUE(story.installer.packages.empty());
    EXPECT_EQ(story.filesLeft(), 0U);
    EXPECT_TRUE(story.log.contains("updates: "));
    std::cout << "  refused: " << row.name << " | " << story.screen->scene.text << "\n";
}

/// The client goes on: tried again when all is well, it updates.
void expectGoesOn(UpdateStory& story) {
    story.now = "2026-11-23T13:00:00Z";
    story.replies[UpdateStory::kPackagePath] = okReply(story.package);
    story.publish({.issued = "2026-11-23T13:00:00Z"});
    EXPECT_EQ(story.screen->scene.primary, "重试");
    story.press();
    EXPECT_EQ(story.screen->scene.primary, "下载更新");
    story.press();
    EXPECT_EQ(story.screen->scene.primary, "安装");
}

TEST(UpdateRefusals, of_the_feed) {
    const test::TestSigner other;
    const Refusal rows[] = {
        {"feed without a signature", UpdateError::FeedSignature, [](auto& it) { it.replies[it.kFeedPath] = okReply(it.feedText({})); }},
        {"feed signed by another key", UpdateError::FeedSignature,
         [&](auto& it) { it.replies[it.kFeedPath] = okReply(other.signedFeed(it.feedText({}))); }},
        {"feed changed after it was signed", UpdateError::FeedSignature,
         [](auto& it) {
             it.replies[it.kFeedPath] =
                 okReply(it.feedText({.version = "9.9"}) + it.signer.signedFeed(it.feedText({})).substr(it.feedText({}).size()));
         }},
        {"feed older than the one seen", UpdateError::FeedOlder,
         [](auto& it) { it.preferences.values.set("HALVANE_UpdateFeedIssued", "2026-11-23T12:00:01Z"); }},
        {"feed that has expired", UpdateError::FeedExpired, [](auto& it) { it.now = "2026-11-30T12:00:00Z"; }},
        {"feed that is yet to come", UpdateError::FeedExpired, [](auto& it) { it.now = "2026-11-22T11:59:59Z"; }},
        {"signed text that is no feed", UpdateError::FeedUnreadable,
         [](auto& it) { it.replies[it.kFeedPath] = okReply(it.signer.signedFeed("<html/>\n")); }},
        {"feed of more than a megabyte", UpdateError::FeedUnreadable,
         [](auto& it) { it.replies[it.kFeedPath] = okReply(std::string((1 << 20) + 1, 'x')); }},
        {"feed behind a redirect to another scheme", UpdateError::OtherScheme,
         [](auto& it) { it.replies[it.kFeedPath] = redirectTo("https://127.0.0.1:1/appcast.xml"); }},
        {"feed behind a redirect to a file", UpdateError::OtherScheme,
         [](auto& it) { it.replies[it.kFeedPath] = redirectTo("file:///etc/passwd"); }},
        {"package address of another scheme", UpdateError::OtherScheme, [](auto& it) { it.publish({.url = "https://127.0.0.1:1/p.deb"}); }},
        {"package address of no scheme of ours", UpdateError::OtherScheme, [](auto& it) { it.publish({.url = "file:///tmp/p.deb"}); }},
        {"no such feed", UpdateError::FeedUnreachable, [](auto& it) { it.replies.erase(it.kFeedPath); }},
        {"feed cut off", UpdateError::FeedUnreachable,
         [](auto& it) { it.replies[it.kFeedPath] = "HTTP/1.1 200 OK\r\nContent-Length: 5000\r\nConnection: close\r\n\r\nabc"; }},
    };
    for (const auto& row : rows) {
        UpdateStory story;
        row.arrange(story);
        story.check();
        expectRefused(story, row);
        story.preferences.values.remove("HALVANE_UpdateFeedIssued");
        expectGoesOn(story);
    }
}

TEST(UpdateRefusals, of_the_downloaded_package) {
    const test::TestSigner other;
    const auto served = [](std::string body) { return [body](UpdateStory& it) { it.replies[it.kPackagePath] = okReply(body); }; };
    const Refusal rows[] = {
        {"package with another byte", UpdateError::PackageSignature, served(std::string(299'999, 'p') + "q")},
        {"package signed by another key", UpdateError::PackageSignature,
         [&](auto& it) { it.publish({.signature = other.sign(it.package)}); }},
        {"package with the signature of another", UpdateError::PackageSignature,
         [](auto& it) { it.publish({.signature = it.signer.sign("x")}); }},
        {"package whose signature is none", UpdateError::PackageSignature, [](auto& it) { it.publish({.signature = "c2ln"}); }},
        {"longer package", UpdateError::PackageLonger, served(std::string(300'001, 'p'))},
        {"longer package that does not say so", UpdateError::PackageLonger,
         [](auto& it) { it.replies[it.kPackagePath] = "HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n" + it.package + "p"; }},
        {"shorter package", UpdateError::PackageShorter, served(std::string(299'999, 'p'))},
        {"package cut off", UpdateError::PackageUnreachable,
         [](auto& it) {
             it.replies[it.kPackagePath] = "HTTP/1.1 200 OK\r\nContent-Length: 300000\r\nConnection: close\r\n\r\n" + it.package.substr(1);
         }},
        {"no such package", UpdateError::PackageUnreachable, [](auto& it) { it.replies.erase(it.kPackagePath); }},
        {"package behind a redirect to another scheme", UpdateError::OtherScheme,
         [](auto& it) { it.replies[it.kPackagePath] = redirectTo("https://127.0.0.1:1/p.deb"); }},
    };
    for (const auto& row : rows) {
        UpdateStory story;
        row.arrange(story);
        story.check();
        ASSERT_EQ(story.screen->scene.primary, "下载更新") << row.name;
        story.press();
        expectRefused(story, row);
        expectGoesOn(story);
    }
}

TEST(UpdateRefusals, of_the_place_where_the_download_should_stand) {
    UpdateStory story;
    std::filesystem::permissions(story.directory.path(), std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
    // The administrator may write anywhere, so that for them something else stands in the way.
    if (::geteuid() == 0) {
        std::filesystem::remove(story.directory.path());
        std::ofstream(story.directory.path()) << "a file";
    }
    story.check();
    story.press();
    expectRefused(story, {"place that cannot be written", UpdateError::CannotSave, {}});
}

TEST(UpdateRefusals, of_the_installation) {
    for (const auto code :
         {UpdateError::PackageSignature, UpdateError::OtherPackage, UpdateError::OtherArchitecture, UpdateError::NotHigher,
          UpdateError::NoSpace, UpdateError::CannotCopy, UpdateError::Busy, UpdateError::InstallationFailed, UpdateError::Interrupted,
          UpdateError::Dismissed, UpdateError::NotAllowed, UpdateError::NoAuthority}) {
        UpdateStory story;
        story.check();
        story.press();
        story.press();
        ASSERT_EQ(story.installer.packages.size(), 1U);
        story.installer.ended(util::updateError(code, "said so"));
        EXPECT_EQ(story.screen->scene.heading, "没有更新");
        EXPECT_EQ(story.screen->scene.text, UpdateTexts::reason(util::updateError(code, "")));
        EXPECT_TRUE(story.log.contains("1.1.0 was not installed: said so"));
        EXPECT_EQ(story.restarts, 0);
        std::cout << "  refused: by the installation, " << static_cast<int>(code) << " | " << story.screen->scene.text << "\n";
        if (code != UpdateError::NotHigher) {
            expectGoesOn(story);
            continue;
        }
        // Trying again would lead in a circle: somebody else has installed it.
        EXPECT_EQ(story.screen->scene.primary, "重新启动");
        story.screen->onPrimary();
        EXPECT_EQ(story.restarts, 1);
    }
}

TEST(UpdateRefusals, each_has_words_of_its_own) {
    std::map<std::string, int> texts;
    for (int code = 0; code < 40; ++code) ++texts[UpdateTexts::reason(util::updateError(static_cast<UpdateError>(code), ""))];
    EXPECT_EQ(texts.at("更新没有完成，请联系 IT 服务台。"), 40 - 22) << "for what has no words";
    texts.erase("更新没有完成，请联系 IT 服务台。");
    for (const auto& [text, count] : texts) EXPECT_EQ(count, 1) << text;
    EXPECT_EQ(UpdateTexts::reason(util::urlError(util::UrlError::TimedOut, "")), "更新没有完成，请联系 IT 服务台。");
}

}  // namespace
}  // namespace halvane::update
