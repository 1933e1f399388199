#pragma once

#include "server/Clock.h"
#include "server/store/Database.h"
#include "server/store/StagedFile.h"
#include "server/updates/PackageName.h"
#include "util/Bytes.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace halvane::server {

/// A package as it is offered to clients.
struct Package {
    PackageName id;
    std::string minimumSystem;  ///< Debian's version, "12"
    std::string notes;          ///< UTF-8, plain text
    std::size_t length = 0;     ///< of the file, bytes
    util::Bytes signature;      ///< over the file's bytes
    Time added;
};

/// The packages that clients are offered: a file (0600) each in one folder, and what is known of it in the database. A file
/// that is missing or has another length than it had is not offered. Any thread; throws DatabaseError or std::system_error.
class PackageStore {
public:
    /// Replies are made in memory.
    static constexpr std::size_t kLargest = 256U << 20U;

    PackageStore(Database& database, std::filesystem::path directory) : database_(database), directory_(std::move(directory)) {}

    /// The bytes in the store's folder, not offered yet.
    [[nodiscard]] StagedFile stage(std::string_view bytes) const;
    /// Offers what was staged; the last one in the order. Replaces the package of that name, which is not offered for a moment.
    void put(const Package& package, StagedFile& staged);
    /// In the order in which they were added, whether their files are still there or not.
    std::vector<Package> all();
    [[nodiscard]] bool isOffered(const Package& package) const;
    /// The bytes of an offered file; absent for any other name.
    std::optional<util::Bytes> read(std::string_view fileName);
    /// With their files, all packages of that version. How many there were.
    std::size_t remove(std::string_view version);

private:
    Database& database_;
    const std::filesystem::path directory_;
};

}  // namespace halvane::server
