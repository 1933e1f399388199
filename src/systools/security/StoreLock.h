#pragma once

#include "linux/base/Descriptor.h"
#include "util/Result.h"

#include <chrono>
#include <filesystem>

namespace halvane::systools {

/// Keeps two programs from changing one directory, such as the certificate store, at the same time; released when the object
/// goes, and by the system when the process dies.
class StoreLock {
public:
    /// Waits for its turn. Error: the file cannot be made, or another program held it all the time.
    static util::Result<StoreLock> take(const std::filesystem::path& file, std::chrono::milliseconds longest = std::chrono::seconds(10));

private:
    explicit StoreLock(linux::Descriptor file) : file_(std::move(file)) {}

    linux::Descriptor file_;
};

}  // namespace halvane::systools
