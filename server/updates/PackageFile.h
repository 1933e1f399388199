#pragma once

#include "server/updates/PackageName.h"
#include "util/Result.h"

#include <filesystem>

namespace halvane::server {

/// Debian packages as files. Any thread; waits for dpkg-deb.
struct PackageFile {
    /// What the package says of itself. Error: dpkg-deb is not there or refuses the file, or a field is missing or is none
    /// by Debian's policy.
    static util::Result<PackageName> nameIn(const std::filesystem::path& file);
};

}  // namespace halvane::server
