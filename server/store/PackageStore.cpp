#include "server/store/PackageStore.h"

#include "server/store/BoundedFile.h"
#include "server/store/PrivateFile.h"

#include <algorithm>

namespace halvane::server {

StagedFile PackageStore::stage(std::string_view bytes) const {
    PrivateFile::makeDirectory(directory_);
    return {directory_ / "package", bytes};
}

void PackageStore::put(const Package& package, StagedFile& staged) {
    const auto& [name, version, architecture] = package.id;
    // In a transaction of its own: should the process end between file and entry, the new file has no old signature.
    database_.run("DELETE FROM packages WHERE name = ? AND version = ? AND architecture = ?", name, version, architecture);
    Database::Transaction transaction(database_);
    staged.replace(directory_ / package.id.fileName());
    {
        auto statement = database_.query(
            "INSERT OR REPLACE INTO packages (name, version, architecture, minimum_system, notes, length, added_at, signature) "
            "VALUES (?, ?, ?, ?, ?, ?, ?, ?)",
            name, version, architecture, package.minimumSystem, package.notes, static_cast<std::int64_t>(package.length), package.added);
        statement.bindBytes(package.signature);
        statement.finish();
    }
    transaction.commit();
}

std::vector<Package> PackageStore::all() {
    std::vector<Package> packages;
    auto row = database_.query(
        "SELECT name, version, architecture, minimum_system, notes, length, added_at, signature FROM packages ORDER BY position");
    while (row.next()) {
        packages.push_back({.id = {row.text(0), row.text(1), row.text(2)},
                            .minimumSystem = row.text(3),
                            .notes = row.text(4),
                            .length = static_cast<std::size_t>(row.integer(5)),
                            .signature = row.bytes(7),
                            .added = row.time(6)});
    }
    return packages;
}

bool PackageStore::isOffered(const Package& package) const {
    std::error_code missing;
    const auto length = std::filesystem::file_size(directory_ / package.id.fileName(), missing);
    return !missing && length == package.length;
}

std::optional<util::Bytes> PackageStore::read(std::string_view fileName) {
    const auto packages = all();
    const auto listed = std::ranges::find(packages, fileName, [](const Package& package) { return package.id.fileName(); });
    if (listed == packages.end()) return std::nullopt;
    auto bytes = BoundedFile::read(directory_ / fileName, listed->length);
    if (!bytes || bytes->size() != listed->length) return std::nullopt;
    return std::move(*bytes);
}

std::size_t PackageStore::remove(std::string_view version) {
    Database::Transaction transaction(database_);
    std::size_t removed = 0;
    for (const auto& package : all()) {
        if (package.id.version != version) continue;
        std::filesystem::remove(directory_ / package.id.fileName());
        ++removed;
    }
    database_.run("DELETE FROM packages WHERE version = ?", version);
    transaction.commit();
    return removed;
}

}  // namespace halvane::server
