#include "update/Appcast.h"

#include "util/PackageVersion.h"
#include "util/Text.h"
#include "util/UpdateError.h"
#include "util/Xml.h"

#include <fmt/format.h>

#include <charconv>
#include <ctime>
#include <string_view>

namespace halvane::update {

namespace {

using util::PackageVersion;
using util::UpdateError;
using util::updateError;
using util::XmlElement;

constexpr std::string_view kSignatureBegins = "<!-- signature: ";
constexpr std::string_view kSignatureEnds = " -->\n";

util::Error unreadable(const std::string& what) { return updateError(UpdateError::FeedUnreadable, "The update feed " + what + "."); }

/// What was signed, and the signature; empty pieces where the last line is none.
struct Signed {
    std::string_view content;
    std::string_view signature;

    explicit Signed(std::string_view bytes) {
        if (!bytes.ends_with(kSignatureEnds)) return;
        const auto lineFeed = bytes.rfind('\n', bytes.size() - 2);
        const auto begin = lineFeed == std::string_view::npos ? 0 : lineFeed + 1;
        std::string_view line = bytes.substr(begin);
        if (!line.starts_with(kSignatureBegins) || line.size() < kSignatureBegins.size() + kSignatureEnds.size()) return;
        line.remove_prefix(kSignatureBegins.size());
        line.remove_suffix(kSignatureEnds.size());
        content = bytes.substr(0, begin);
        signature = line;
    }
};

std::string textIn(const XmlElement& element, std::string_view child) {
    const auto* found = element.child(child);
    return found == nullptr ? std::string() : found->text;
}

std::string attributeIn(const XmlElement& element, std::string_view name) {
    const auto* found = element.attribute(name);
    return found == nullptr ? std::string() : *found;
}

std::optional<std::uint64_t> lengthOf(const std::string& text) {
    std::uint64_t length = 0;
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), length);
    if (failure != std::errc() || end != text.data() + text.size() || length == 0 || length > Appcast::kLargestPackage) return std::nullopt;
    return length;
}

util::Result<UpdateItem> itemOf(const XmlElement& element) {
    const auto* enclosure = element.child("enclosure");
    if (enclosure == nullptr) return unreadable("has an item without an enclosure");
    UpdateItem item{.version = attributeIn(*enclosure, "halvane:version"),
                    .package = attributeIn(*enclosure, "halvane:package"),
                    .architecture = attributeIn(*enclosure, "halvane:architecture"),
                    .minimumSystem = textIn(element, "halvane:minimumSystem"),
                    .notes = textIn(element, "description"),
                    .url = attributeIn(*enclosure, "url"),
                    .signature = attributeIn(*enclosure, "halvane:signature")};
    const auto length = lengthOf(attributeIn(*enclosure, "length"));
    if (!PackageVersion::parse(item.version)) return unreadable("has an item without a usable version");
    if (!item.minimumSystem.empty() && !PackageVersion::parse(item.minimumSystem))
        return unreadable("names no usable lowest system for " + item.version);
    if (item.package.empty() || item.architecture.empty() || item.url.empty() || item.signature.empty() || !length)
        return unreadable("says too little of " + item.version);
    item.length = *length;
    return item;
}

/// A system without a version, such as one between two releases, is taken to be new enough.
bool runsOn(const UpdateItem& item, const InstalledClient& client) {
    if (item.package != client.package || (item.architecture != client.architecture && item.architecture != "all")) return false;
    const auto needed = PackageVersion::parse(item.minimumSystem);
    const auto there = PackageVersion::parse(client.systemVersion);
    return !needed || !there || *there >= *needed;
}

}  // namespace

util::Result<Appcast> Appcast::read(const util::Bytes& bytes, const util::PublicKey& key) {
    const Signed parts(bytes);
    if (parts.signature.empty() || !key.verifies(parts.content, parts.signature))
        return updateError(UpdateError::FeedSignature, "The update feed is not signed with the company's key.");
    const auto root = util::Xml::decode(util::Bytes(parts.content));
    if (!root) return unreadable("is " + root.error().description);
    const auto* channel = (*root)->name == "rss" ? (*root)->child("channel") : nullptr;
    if (channel == nullptr) return unreadable("is no RSS");
    const auto issued = instantOf(textIn(*channel, "halvane:issued"));
    const auto expires = instantOf(textIn(*channel, "halvane:expires"));
    if (!issued || !expires) return unreadable("does not say when it was issued and when it expires");
    Appcast feed;
    feed.issued_ = *issued;
    feed.expires_ = *expires;
    for (const auto& child : channel->children) {
        if (child.name != "item") continue;
        auto item = itemOf(child);
        if (!item) return item.error();
        feed.items_.push_back(*std::move(item));
    }
    return feed;
}

util::Result<void> Appcast::checkFresh(Instant now, std::optional<Instant> newestSeen) const {
    if (now >= expires_) return updateError(UpdateError::FeedExpired, "The update feed expired at " + textOf(expires_) + ".");
    constexpr std::chrono::hours kMostAhead{24};  // clocks differ
    if (issued_ > now + kMostAhead)
        return updateError(UpdateError::FeedExpired, "The update feed was issued at " + textOf(issued_) + ", which is yet to come.");
    if (newestSeen && issued_ < *newestSeen)
        return updateError(UpdateError::FeedOlder, "The update feed of " + textOf(issued_) + " is older than the one of " +
                                                       textOf(*newestSeen) + " that was seen.");
    return {};
}

std::optional<UpdateItem> Appcast::updateFor(const InstalledClient& client) const {
    auto highest = PackageVersion::parse(client.version);
    if (!highest) return std::nullopt;
    const UpdateItem* best = nullptr;
    for (const auto& item : items_) {
        const auto version = PackageVersion::parse(item.version);
        if (!version || *version <= *highest || !runsOn(item, client)) continue;
        highest = version;
        best = &item;
    }
    return best == nullptr ? std::nullopt : std::optional(*best);
}

std::string Appcast::textOf(Instant instant) {
    const auto day = std::chrono::floor<std::chrono::days>(instant);
    const std::chrono::year_month_day date(day);
    const std::chrono::hh_mm_ss time(instant - day);
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}Z", static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                       static_cast<unsigned>(date.day()), time.hours().count(), time.minutes().count(), time.seconds().count());
}

std::optional<Appcast::Instant> Appcast::instantOf(std::string_view text) {
    constexpr std::string_view kShape = "0000-00-00T00:00:00Z";
    if (text.size() != kShape.size()) return std::nullopt;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isDigit = text[i] >= '0' && text[i] <= '9';
        if (kShape[i] == '0' ? !isDigit : text[i] != kShape[i]) return std::nullopt;
    }
    const auto number = [text](std::size_t from, std::size_t length) {
        int value = 0;
        for (const char digit : text.substr(from, length)) value = value * 10 + (digit - '0');
        return value;
    };
    const std::chrono::year_month_day date(std::chrono::year(number(0, 4)), std::chrono::month(static_cast<unsigned>(number(5, 2))),
                                           std::chrono::day(static_cast<unsigned>(number(8, 2))));
    const int hour = number(11, 2);
    const int minute = number(14, 2);
    const int second = number(17, 2);
    if (!date.ok() || hour > 23 || minute > 59 || second > 59) return std::nullopt;
    return std::chrono::sys_days(date) + std::chrono::hours(hour) + std::chrono::minutes(minute) + std::chrono::seconds(second);
}

}  // namespace halvane::update
