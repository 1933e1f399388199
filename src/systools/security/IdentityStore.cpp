#include "systools/security/IdentityStore.h"

#include "systools/security/StoreLock.h"

#include <algorithm>
#include <tuple>

namespace halvane::systools {

namespace {

constexpr const char* kLockFile = ".lock";

using Certificates = std::vector<Certificate>;

/// Those of the entries that `chosen` says yes to.
template <typename Chosen>
Certificates selected(const std::vector<NssDatabase::Entry>& entries, Chosen chosen) {
    Certificates found;
    for (const auto& entry : entries) {
        if (chosen(entry)) found.push_back(entry.certificate);
    }
    return found;
}

util::Result<void> removeCertificates(NssDatabase& database, const Certificates& certificates) {
    for (const auto& certificate : certificates) {
        if (auto removed = database.removeCertificate(certificate); !removed) return removed;
    }
    return {};
}

/// Removes the keys of certificates that are gone, except where one that is still there has the same key.
util::Result<void> removeKeys(NssDatabase& database, const Certificates& gone) {
    const auto left = database.entries();
    if (!left) return left.error();
    for (const auto& certificate : gone) {
        const auto hasSameKey = [&](const auto& entry) { return entry.certificate.publicKey == certificate.publicKey; };
        if (std::ranges::any_of(*left, hasSameKey)) continue;
        if (auto removed = database.removePrivateKey(certificate); !removed) return removed;
    }
    return {};
}

/// Stores key and certificate, or neither.
util::Result<void> add(NssDatabase& database, const Identity& identity) {
    const bool hadKey = database.hasPrivateKey(identity.certificate);
    if (auto added = database.addPrivateKey(identity.privateKey, identity.certificate); !added) return added;
    auto added = database.addCertificate(identity.certificate);
    if (added || hadKey) return added;
    const auto removed = database.removePrivateKey(identity.certificate);
    return removed ? added : util::serviceError(added.error().description + "; and " + removed.error().description);
}

/// Puts `identity` in the place of `older`. Their keys are left, so that after an error they can come
/// back; and they go first, for the new one may bear their name, or their number from a careless authority.
util::Result<void> replace(NssDatabase& database, const Certificates& older, const Identity& identity) {
    auto done = removeCertificates(database, older);
    if (done) done = add(database, identity);
    if (done) return done;
    for (const auto& certificate : older) {
        if (auto restored = database.addCertificate(certificate); !restored)
            return util::serviceError(done.error().description + "; and " + restored.error().description);
    }
    return done;
}

}  // namespace

IdentityStore::IdentityStore(StorePlaces places, platform::FileStore& files)
    : places_(std::move(places)), files_(files), identityFiles_(places_.identities, files) {}

util::Result<IdentityStore::Imported> IdentityStore::import(const util::Bytes& pkcs12, const std::string& password) {
    const auto identity = Pkcs12File::open(pkcs12, password);
    if (!identity) return identity.error();
    const Certificate& certificate = identity->certificate;

    if (auto made = identityFiles_.prepare(); !made) return made.error();
    const auto lock = StoreLock::take(identityFiles_.directory() / kLockFile);
    if (!lock) return lock.error();
    const auto& directory = places_.databases.front();
    if (auto made = files_.makeDirectory(directory); !made) return made.error();
    auto database = NssDatabase::open(directory, NssDatabase::Access::Write);
    if (!database) return database.error();

    const auto entries = database->entries();
    if (!entries) return entries.error();
    const auto older = selected(*entries, [&](const NssDatabase::Entry& entry) {
        return entry.hasPrivateKey && entry.certificate.commonName == certificate.commonName && entry.certificate.der != certificate.der;
    });

    const auto before = identityFiles_.read(certificate.commonName);
    if (!before) return before.error();
    if (auto written = identityFiles_.write(certificate.commonName, pkcs12); !written) return written.error();
    if (auto replaced = replace(*database, older, *identity); !replaced) {
        const auto restored = restoreFile(certificate.commonName, *before);
        return restored ? replaced.error() : util::serviceError(replaced.error().description + "; and " + restored.error().description);
    }

    Imported imported{certificate, {}};
    for (const auto& authority : identity->authorities) {
        if (auto added = database->addCertificate(authority); !added) imported.remarks.push_back(added.error().description);
    }
    if (auto cleaned = removeKeys(*database, older); !cleaned) imported.remarks.push_back(cleaned.error().description);
    return imported;
}

util::Result<void> IdentityStore::restoreFile(const std::string& commonName, const std::optional<util::Bytes>& bytes) {
    return bytes ? identityFiles_.write(commonName, *bytes) : identityFiles_.remove(commonName);
}

util::Result<std::vector<Certificate>> IdentityStore::identities() const {
    std::vector<Certificate> found;
    const auto& directory = places_.databases.front();
    if (!NssDatabase::exists(directory)) return found;
    const auto database = NssDatabase::open(directory, NssDatabase::Access::Read);
    if (!database) return database.error();
    if (database->keys() == NssDatabase::Keys::Locked) {
        return util::serviceError("certificate database: the keys in " + directory.string() +
                                  " are protected by a password of their owner, so that none can be seen");
    }
    const auto entries = database->entries();
    if (!entries) return entries.error();
    for (const auto& entry : *entries) {
        if (entry.hasPrivateKey) found.push_back(entry.certificate);
    }
    std::ranges::sort(found, {}, [](const Certificate& each) { return std::tie(each.commonName, each.fingerprint); });
    return found;
}

util::Result<bool> IdentityStore::remove(const std::string& commonName) {
    bool found = identityFiles_.exists(commonName);
    if (!found && std::ranges::none_of(places_.databases, NssDatabase::exists)) return false;
    if (auto made = identityFiles_.prepare(); !made) return made.error();
    const auto lock = StoreLock::take(identityFiles_.directory() / kLockFile);
    if (!lock) return lock.error();

    // What fails at one place is no reason to leave the certificate at the others.
    std::optional<util::Error> failed;
    if (auto removed = identityFiles_.remove(commonName); !removed) failed = removed.error();
    for (const auto& database : places_.databases) {
        if (!NssDatabase::exists(database)) continue;
        const auto removed = removeFrom(database, commonName);
        if (!removed && !failed) failed = removed.error();
        found = found || (removed && *removed);
    }
    if (failed) return *failed;
    return found;
}

util::Result<bool> IdentityStore::removeFrom(const std::filesystem::path& directory, const std::string& commonName) {
    auto database = NssDatabase::open(directory, NssDatabase::Access::Write);
    if (!database) return database.error();
    const auto entries = database->entries();
    if (!entries) return entries.error();
    const auto chosen = selected(*entries, [&](const auto& entry) { return entry.certificate.commonName == commonName; });
    if (auto removed = removeCertificates(*database, chosen); !removed) return removed.error();
    if (auto removed = removeKeys(*database, chosen); !removed) return removed.error();
    return !chosen.empty();
}

}  // namespace halvane::systools
