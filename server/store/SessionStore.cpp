#include "server/store/SessionStore.h"

#include "server/crypto/Digest.h"
#include "server/crypto/Random.h"

namespace halvane::server {

namespace {

/// Every poll would otherwise write to the disk.
constexpr std::chrono::hours kProlongAtMostEvery{1};

}  // namespace

std::string SessionStore::open(std::int64_t userId) {
    const std::string token = Random::hex(32);
    const Time now = clock_();
    Database::Transaction transaction(database_);
    database_.run("DELETE FROM sessions WHERE expires_at <= ?", now);
    database_.run("INSERT INTO sessions (token_hash, user_id, expires_at) VALUES (?, ?, ?)", Digest::sha256(token), userId,
                  now + kLifetime);
    transaction.commit();
    return token;
}

std::optional<std::int64_t> SessionStore::userOf(std::string_view token) {
    const std::string hash = Digest::sha256(token);
    const Time now = clock_();
    std::int64_t userId = 0;
    Time expiresAt;
    {
        auto row = database_.query("SELECT user_id, expires_at FROM sessions WHERE token_hash = ?", hash);
        if (!row.next()) return std::nullopt;
        userId = row.integer(0);
        expiresAt = row.time(1);
    }
    if (expiresAt <= now) return std::nullopt;
    if (now + kLifetime - expiresAt >= kProlongAtMostEvery) {
        database_.run("UPDATE sessions SET expires_at = ? WHERE token_hash = ?", now + kLifetime, hash);
    }
    return userId;
}

void SessionStore::closeAll(std::int64_t userId) { database_.run("DELETE FROM sessions WHERE user_id = ?", userId); }

}  // namespace halvane::server
