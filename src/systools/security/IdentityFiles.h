#pragma once

#include "platform/FileStore.h"
#include "util/Result.h"

#include <filesystem>
#include <optional>
#include <string>

namespace halvane::systools {

/// One PKCS#12 file for each identity, with the bytes as they were imported: network connections
/// refer to it by path, and have the password that belongs to it. Files are 0600 in a 0700 directory.
class IdentityFiles {
public:
    /// `files` must outlive it.
    IdentityFiles(std::filesystem::path directory, platform::FileStore& files) : directory_(std::move(directory)), files_(files) {}

    /// Where the identity of that name stands, or would. Different names have different files.
    [[nodiscard]] std::filesystem::path pathOf(const std::string& commonName) const;
    [[nodiscard]] bool exists(const std::string& commonName) const { return files_.exists(pathOf(commonName)); }
    /// Absent when there is none of that name.
    [[nodiscard]] util::Result<std::optional<util::Bytes>> read(const std::string& commonName) const;
    util::Result<void> write(const std::string& commonName, const util::Bytes& bytes);
    /// None of that name is a success.
    util::Result<void> remove(const std::string& commonName);

    [[nodiscard]] const std::filesystem::path& directory() const { return directory_; }
    /// Makes the directory, private.
    util::Result<void> prepare();

private:
    const std::filesystem::path directory_;
    platform::FileStore& files_;
};

}  // namespace halvane::systools
