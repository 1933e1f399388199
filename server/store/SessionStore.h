#pragma once

#include "server/Clock.h"
#include "server/store/Database.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace halvane::server {

/// Who is signed in. Tokens are 256 random bits, of which only a digest is stored. Any thread; throws DatabaseError.
class SessionStore {
public:
    /// After so long without a request. The client signs in by itself only with a living session, and
    /// without one it no longer learns that its computer was locked: long enough for a holiday.
    static constexpr std::chrono::hours kLifetime{24 * 30};

    SessionStore(Database& database, Clock clock) : database_(database), clock_(std::move(clock)) {}

    /// Opens a session and answers its token.
    std::string open(std::int64_t userId);
    /// Whose living session it is; being asked keeps it alive.
    std::optional<std::int64_t> userOf(std::string_view token);
    void closeAll(std::int64_t userId);

private:
    Database& database_;
    Clock clock_;
};

}  // namespace halvane::server
