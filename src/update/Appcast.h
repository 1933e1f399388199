#pragma once

#include "update/InstalledClient.h"
#include "update/UpdateItem.h"
#include "util/Bytes.h"
#include "util/PublicKey.h"
#include "util/Result.h"

#include <chrono>
#include <optional>
#include <vector>

namespace halvane::update {

/// What a feed says, after its signature was verified: RSS with one item a package. Its last line,
/// `<!-- signature: BASE64 -->`, signs every byte before it. A value; any thread.
class Appcast {
public:
    using Instant = std::chrono::sys_seconds;

    /// Longer feeds are none of ours.
    static constexpr std::uint64_t kLongest = std::uint64_t{1} << 20;

    /// Nor does anybody need a package of more bytes.
    static constexpr std::uint64_t kLargestPackage = std::uint64_t{256} << 20;

    /// Errors: FeedSignature, and FeedUnreadable for what was signed but is no feed. Nothing but the last line is looked at
    /// before the signature is known to be good.
    static util::Result<Appcast> read(const util::Bytes& bytes, const util::PublicKey& key);

    [[nodiscard]] Instant issued() const { return issued_; }
    [[nodiscard]] const std::vector<UpdateItem>& items() const { return items_; }

    /// Errors: FeedExpired, which one from the future counts as too (remembered, it would hide all that come before it), and FeedOlder than
    /// `newestSeen`: whoever replays a feed hides what came after it.
    [[nodiscard]] util::Result<void> checkFresh(Instant now, std::optional<Instant> newestSeen) const;

    /// The highest of the packages that are higher than `client` and run here; absent when there is none.
    [[nodiscard]] std::optional<UpdateItem> updateFor(const InstalledClient& client) const;

    /// "2026-11-23T21:00:00Z", and back; absent for what is written differently.
    static std::string textOf(Instant instant);
    static std::optional<Instant> instantOf(std::string_view text);

private:
    Instant issued_;
    Instant expires_;
    std::vector<UpdateItem> items_;
};

}  // namespace halvane::update
