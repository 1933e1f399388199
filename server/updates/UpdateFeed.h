#pragma once

#include "server/Clock.h"

#include <chrono>
#include <string>
#include <vector>

namespace halvane::server {

class SigningKey;
struct Package;

/// The list of packages that clients look at for updates: RSS with a few elements of our own, and in its last line the
/// signature over every byte before that line. Any thread.
class UpdateFeed {
public:
    /// A feed that somebody kept back hides newer packages; clients take none that is older than this.
    static constexpr std::chrono::hours kLifetime{24 * 7};

    /// `key` outlives the feed; the files are below `filesUrl`, which ends in "/".
    UpdateFeed(const SigningKey& key, std::string filesUrl);

    /// UTF-8. Throws CryptoError.
    [[nodiscard]] std::string text(const std::vector<Package>& packages, Time issued) const;

private:
    [[nodiscard]] std::string item(const Package& package) const;

    const SigningKey& key_;
    const std::string filesUrl_;
};

}  // namespace halvane::server
