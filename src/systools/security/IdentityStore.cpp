#include "systools/security/IdentityStore.h"

#include "systools/security/StoreLock.h"

#include <algorithm>
#include <functional>
#include <tuple>

namespace halvane::systools {

namespace {

constexpr const char* kLockFile = ".lock";

using Entries = std::vector<NssDatabase::Entry>;
using Chosen = std::function<bool(const NssDatabase::Entry&)>;

/// Removes the chosen entries, and of their keys those that no other entry needs.
util::Result<void> removeEntries(NssDatabase& database, const Entries& entries, const Chosen& chosen) {
    for (const auto& entry : entries) {
        if (!chosen(entry)) continue;
        if (auto removed = database.removeCertificate(entry.certificate); !removed) return removed;
        const bool needed = std::ranges::any_of(
            entries, [&](const auto& other) { return !chosen(other) && other.certificate.publicKey == entry.certificate.publicKey; });
        if (needed) continue;
        if (auto removed = database.removePrivateKey(entry.certificate); !removed) return removed;
    }
    return {};
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

    const auto before = identityFiles_.read(certificate.commonName);
    if (!before) return before.error();
    if (auto written = identityFiles_.write(certificate.commonName, pkcs12); !written) return written.error();
    if (auto added = addTo(*database, *identity); !added) {
        const auto restored = restoreFile(certificate.commonName, *before);
        return restored ? added.error() : util::serviceError(added.error().description + "; and " + restored.error().description);
    }

    Imported imported{certificate, {}};
    for (const auto& authority : identity->authorities) {
        if (auto added = database->addCertificate(authority); !added) imported.remarks.push_back(added.error().description);
    }
    const auto entries = database->entries();
    auto cleaned = entries ? removeEntries(*database, *entries,
                                           [&](const NssDatabase::Entry& entry) {
                                               return entry.hasPrivateKey && entry.certificate.commonName == certificate.commonName &&
                                                      entry.certificate.der != certificate.der;
                                           })
                           : util::Result<void>(entries.error());
    if (!cleaned) imported.remarks.push_back("an older identity of that name is still there: " + cleaned.error().description);
    return imported;
}

util::Result<void> IdentityStore::addTo(NssDatabase& database, const Identity& identity) {
    const bool hadKey = database.hasPrivateKey(identity.certificate);
    if (auto added = database.addPrivateKey(identity.privateKey, identity.certificate); !added) return added;
    auto added = database.addCertificate(identity.certificate);
    if (added || hadKey) return added;
    const auto removed = database.removePrivateKey(identity.certificate);
    return removed ? added : util::serviceError(added.error().description + "; and " + removed.error().description);
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
    const auto chosen = [&](const NssDatabase::Entry& entry) { return entry.certificate.commonName == commonName; };
    auto database = NssDatabase::open(directory, NssDatabase::Access::Write);
    if (!database) return database.error();
    const auto entries = database->entries();
    if (!entries) return entries.error();
    if (std::ranges::none_of(*entries, chosen)) return false;
    if (auto removed = removeEntries(*database, *entries, chosen); !removed) return removed.error();
    return true;
}

}  // namespace halvane::systools
