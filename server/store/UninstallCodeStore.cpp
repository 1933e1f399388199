#include "server/store/UninstallCodeStore.h"

#include "server/crypto/Digest.h"
#include "server/crypto/Random.h"

namespace halvane::server {

namespace {

constexpr std::size_t kDigits = 6;

}  // namespace

std::string UninstallCodeStore::make(std::int64_t userId, std::string_view hostName) {
    const std::string code = Random::digits(kDigits);
    database_.run("INSERT OR REPLACE INTO uninstall_codes (user_id, host_name, code_hash, expires_at) VALUES (?, ?, ?, ?)", userId,
                  hostName, Digest::sha256(code), clock_() + kLifetime);
    return code;
}

UninstallCodeStore::Verdict UninstallCodeStore::use(std::int64_t userId, std::string_view hostName, std::string_view code) {
    Database::Transaction transaction(database_);
    std::string expected;
    {
        auto row =
            database_.query("SELECT code_hash FROM uninstall_codes WHERE user_id = ? AND host_name = ? AND expires_at > ? AND tries < ?",
                            userId, hostName, clock_(), kTries);
        if (!row.next()) return Verdict::NoCode;
        expected = row.text(0);
    }
    const bool accepted = Digest::equal(Digest::sha256(code), expected);
    if (accepted) {
        database_.run("DELETE FROM uninstall_codes WHERE user_id = ? AND host_name = ?", userId, hostName);
    } else {
        database_.run("UPDATE uninstall_codes SET tries = tries + 1 WHERE user_id = ? AND host_name = ?", userId, hostName);
    }
    transaction.commit();
    return accepted ? Verdict::Accepted : Verdict::Wrong;
}

}  // namespace halvane::server
