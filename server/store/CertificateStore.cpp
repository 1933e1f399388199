#include "server/store/CertificateStore.h"

#include "server/crypto/Digest.h"
#include "server/crypto/Random.h"
#include "server/store/UserStore.h"

namespace halvane::server {

std::string CertificateStore::put(std::int64_t userId, const Issued& issued) {
    const std::string secret = Random::hex(32);
    auto statement = database_.query(
        "INSERT OR REPLACE INTO certificates (user_id, serial, not_after, download_hash, download_until, pkcs12) VALUES (?, ?, ?, ?, ?, ?)",
        userId, issued.serial, issued.notAfter, Digest::sha256(secret), clock_() + kDownloadLifetime);
    statement.bindBytes(issued.pkcs12);
    statement.finish();
    return secret;
}

std::optional<CertificateStore::File> CertificateStore::fetch(std::string_view secret) {
    auto row = database_.query(
        "SELECT short_name, pkcs12 FROM certificates JOIN users ON users.id = user_id WHERE download_hash = ? AND download_until > ?",
        Digest::sha256(secret), clock_());
    if (!row.next()) return std::nullopt;
    return File{User{.shortName = row.text(0)}.certificateFileName(), row.bytes(1)};
}

}  // namespace halvane::server
