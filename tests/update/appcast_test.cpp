#include "UpdateStory.h"

#include "util/UpdateError.h"

#include <gtest/gtest.h>

namespace halvane::update {
namespace {

using test::UpdateStory;
using util::UpdateError;

class AppcastTest : public testing::Test {
protected:
    [[nodiscard]] util::Result<Appcast> read(const util::Bytes& bytes) const { return Appcast::read(bytes, key); }
    [[nodiscard]] int codeOf(const util::Bytes& bytes) const {
        const auto feed = read(bytes);
        return feed ? 0 : feed.error().code;
    }
    [[nodiscard]] int codeOfSigned(const std::string& text) const { return codeOf(story.signer.signedFeed(text)); }
    [[nodiscard]] std::string with(std::string_view from, std::string_view to) const {
        std::string text = story.feedText({});
        const auto at = text.find(from);
        if (at == std::string::npos) throw std::logic_error("the feed has no " + std::string(from));
        return text.replace(at, from.size(), to);
    }

    const UpdateStory story;
    const util::PublicKey key = *util::PublicKey::fromBase64(story.signer.publicKey());
    static constexpr int kSignature = static_cast<int>(UpdateError::FeedSignature);
    static constexpr int kUnreadable = static_cast<int>(UpdateError::FeedUnreadable);
};

TEST_F(AppcastTest, what_was_signed_is_read) {
    const auto feed = read(story.signer.signedFeed(story.feedText({.notes = "1 &lt; 2\n  &amp; more"})));
    ASSERT_TRUE(feed) << feed.error().description;
    EXPECT_EQ(Appcast::textOf(feed->issued()), "2026-11-23T12:00:00Z");
    const UpdateItem expected{.version = "1.1.0",
                              .package = "halvane",
                              .architecture = "amd64",
                              .minimumSystem = "12",
                              .notes = "1 < 2\n  & more",
                              .url = UpdateStory::kPackagePath,
                              .length = story.package.size(),
                              .signature = story.signer.sign(story.package)};
    EXPECT_EQ(feed->items(), std::vector{expected});
}

TEST_F(AppcastTest, nothing_is_believed_that_was_not_signed_to_its_last_byte) {
    const std::string text = story.feedText({});
    const std::string good = story.signer.signedFeed(text);
    ASSERT_EQ(codeOf(good), 0);
    const test::TestSigner other;
    const std::string signature = "<!-- signature: " + story.signer.sign(text) + " -->\n";
    for (const std::string& feed :
         {std::string(), std::string("\n"), text, text + "<!-- signature: -->\n", text + "<!-- signature:  -->\n", other.signedFeed(text),
          good + "\n", good + signature, " " + good, good.substr(0, good.size() - 1), signature + text, text + "x" + signature,
          with("1.1.0", "9.1.0") + signature, text + "<!-- note -->\n" + signature, text.substr(0, text.size() - 1) + signature})
        EXPECT_EQ(codeOf(feed), kSignature) << feed;
}

TEST_F(AppcastTest, what_was_signed_but_says_too_little_is_unreadable) {
    const std::string rows[] = {
        "no feed\n",
        "<rss/>\n",
        "<feed><channel/></feed>\n",
        with("<halvane:issued>", "<issued>") + "<\n",
        with("2026-11-23T12:00:00Z", "2026-11-23 12:00:00"),
        with("2026-11-30T12:00:00Z", ""),
        with("<enclosure", "<closure"),
        with("halvane:version=\"1.1.0\"", ""),
        with("halvane:version=\"1.1.0\"", "halvane:version=\"../1\""),
        with("halvane:version=\"1.1.0\"", "version=\"1.1.0\""),
        with("halvane:package=\"halvane\"", ""),
        with("halvane:architecture=\"amd64\"", "halvane:architecture=\"\""),
        with("halvane:signature", "signature"),
        with("url=\"/update/halvane_1.1.0_amd64.deb\"", "url=\"\""),
        with("length=\"300000\"", "length=\"0\""),
        with("length=\"300000\"", "length=\"-1\""),
        with("length=\"300000\"", "length=\"3e5\""),
        with("length=\"300000\"", "length=\"99999999999999999999\""),
        with("length=\"300000\"", "length=\"268435457\""),
        with("<halvane:minimumSystem>12", "<halvane:minimumSystem>twelve"),
    };
    for (const auto& text : rows) EXPECT_EQ(codeOfSigned(text), kUnreadable) << text;
    EXPECT_EQ(codeOfSigned(with("length=\"300000\"", "length=\"268435456\"")), 0);
}

TEST_F(AppcastTest, the_highest_that_runs_here_is_offered) {
    struct Row {
        const char* name;
        std::vector<UpdateStory::Offer> offers;
        std::string expected;
        std::string systemVersion = "12";
    };
    const Row rows[] = {
        {"nothing", {}, ""},
        {"one", {{}}, "1.1.0"},
        {"the same", {{.version = "1.0.0"}}, ""},
        {"the same, written differently", {{.version = "1.0.00"}}, ""},
        {"lower", {{.version = "0.9.9"}}, ""},
        {"before the same", {{.version = "1.0.0~rc9"}}, ""},
        {"the highest of several", {{.version = "1.9"}, {.version = "1.10"}, {.version = "1.2"}}, "1.10"},
        {"another package", {{.package = "halvane-server"}}, ""},
        {"another architecture", {{.architecture = "arm64"}}, ""},
        {"any architecture", {{.architecture = "all"}}, "1.1.0"},
        {"for later systems", {{.version = "2.0", .minimumSystem = "13"}, {}}, "1.1.0"},
        {"for 9 and later", {{.minimumSystem = "9"}}, "1.1.0"},
        {"for 12.1 and later", {{.minimumSystem = "12.1"}}, ""},
        {"a system without a version", {{.minimumSystem = "13"}}, "1.1.0", ""},
        {"a system whose version is a name", {{.minimumSystem = "13"}}, "1.1.0", "trixie/sid"},
        {"for any system", {{.minimumSystem = ""}}, "1.1.0"},
    };
    for (const auto& row : rows) {
        std::string text =
            "<rss><channel><halvane:issued>2026-11-23T12:00:00Z</halvane:issued>"
            "<halvane:expires>2026-11-30T12:00:00Z</halvane:expires>";
        for (const auto& offer : row.offers) {
            const std::string whole = story.feedText(offer);
            const auto begin = whole.find("<item>");
            text += whole.substr(begin, whole.find("</item>") + 7 - begin);
        }
        const auto feed = read(story.signer.signedFeed(text + "</channel></rss>\n"));
        ASSERT_TRUE(feed) << row.name << ": " << feed.error().description;
        const auto update = feed->updateFor({"halvane", "1.0.0", "amd64", row.systemVersion});
        EXPECT_EQ(update ? update->version : "", row.expected) << row.name;
    }
}

TEST_F(AppcastTest, instants_are_read_as_they_are_written) {
    for (const char* text : {"1970-01-01T00:00:00Z", "2024-02-29T23:59:59Z", "2026-11-23T12:34:56Z", "9999-12-31T00:00:00Z"}) {
        const auto instant = Appcast::instantOf(text);
        ASSERT_TRUE(instant) << text;
        EXPECT_EQ(Appcast::textOf(*instant), text);
    }
    EXPECT_EQ(Appcast::instantOf("1970-01-02T01:01:01Z")->time_since_epoch().count(), 90'061);
    for (const char* text :
         {"", "2026-11-23", "2026-11-23T12:34:56", "2026-11-23T12:34:56+", "2026-11-23t12:34:56Z", "2026-13-01T00:00:00Z",
          "2026-02-29T00:00:00Z", "2026-01-01T24:00:00Z", "2026-01-01T00:60:00Z", "2026-01-01T00:00:60Z", "2026-1-01T00:00:000Z"})
        EXPECT_FALSE(Appcast::instantOf(text)) << text;
}

}  // namespace
}  // namespace halvane::update
