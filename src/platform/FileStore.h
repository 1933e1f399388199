#pragma once

#include "util/Bytes.h"
#include "util/Result.h"

#include <filesystem>

namespace halvane::platform {

/// Whole files of this user. Errors are of the "halvane.file" domain. Any thread.
class FileStore {
public:
    virtual ~FileStore() = default;
    virtual util::Result<util::Bytes> read(const std::filesystem::path& path) const = 0;
    /// All or nothing: written to a neighbour, 0600, and renamed over what was there.
    virtual util::Result<void> write(const std::filesystem::path& path, const util::Bytes& bytes) = 0;
    /// With missing parents, each 0700. An existing directory is a success.
    virtual util::Result<void> makeDirectory(const std::filesystem::path& path) = 0;
    virtual util::Result<void> remove(const std::filesystem::path& path) = 0;
    /// With all that is in it; links in it are removed, not followed. One that is not there is a success.
    virtual util::Result<void> removeDirectory(const std::filesystem::path& path) = 0;
    [[nodiscard]] virtual bool exists(const std::filesystem::path& path) const = 0;
};

}  // namespace halvane::platform
