#include "server/updates/UpdateFeed.h"

#include "server/crypto/SigningKey.h"
#include "server/store/PackageStore.h"
#include "util/Base64.h"
#include "util/Text.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

namespace halvane::server {

namespace {

/// Fit for an element and for an attribute. What XML cannot express in any way is left out: most controls and two
/// characters that are none.
std::string escaped(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (const char c : util::replaced(util::replaced(text, "\uFFFE", ""), "\uFFFF", "")) {
        switch (c) {
            case '&':
                result += "&amp;";
                break;
            case '<':
                result += "&lt;";
                break;
            case '>':
                result += "&gt;";
                break;
            case '"':
                result += "&quot;";
                break;
            default:
                if (static_cast<unsigned char>(c) >= ' ' || c == '\t' || c == '\n' || c == '\r') result += c;
        }
    }
    return result;
}

std::string isoTime(Time time) { return fmt::format("{:%Y-%m-%dT%H:%M:%SZ}", fmt::gmtime(time)); }

}  // namespace

UpdateFeed::UpdateFeed(const SigningKey& key, std::string filesUrl) : key_(key), filesUrl_(std::move(filesUrl)) {}

std::string UpdateFeed::item(const Package& package) const {
    const auto& [name, version, architecture] = package.id;
    return fmt::format(R"(    <item>
      <title>Halvane {0}</title>
      <pubDate>{1:%a, %d %b %Y %H:%M:%S} GMT</pubDate>
      <description>{2}</description>
      <halvane:minimumSystem>{3}</halvane:minimumSystem>
      <enclosure url="{4}" length="{5}" type="application/vnd.debian.binary-package" halvane:package="{6}" halvane:version="{0}" halvane:architecture="{7}" halvane:signature="{8}"/>
    </item>
)",
                       escaped(version), fmt::gmtime(package.added), escaped(package.notes), escaped(package.minimumSystem),
                       escaped(filesUrl_ + package.id.fileName()), package.length, escaped(name), escaped(architecture),
                       util::Base64::encode(package.signature));
}

std::string UpdateFeed::text(const std::vector<Package>& packages, Time issued) const {
    std::string items;
    for (const auto& package : packages) items += item(package);
    const std::string signedPart = fmt::format(R"(<?xml version="1.0" encoding="UTF-8"?>
<rss version="2.0" xmlns:halvane="urn:halvane:update">
  <channel>
    <title>Halvane</title>
    <halvane:issued>{}</halvane:issued>
    <halvane:expires>{}</halvane:expires>
{}  </channel>
</rss>
)",
                                               isoTime(issued), isoTime(issued + kLifetime), items);
    return signedPart + "<!-- signature: " + util::Base64::encode(key_.sign(signedPart)) + " -->\n";
}

}  // namespace halvane::server
