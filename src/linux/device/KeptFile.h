#pragma once

#include "linux/base/Descriptor.h"

#include <filesystem>
#include <mutex>
#include <optional>
#include <string>

namespace halvane::linux {

/// A text that the kernel makes anew whenever it is read, and that is read again and again: opened at the
/// first reading and kept open, so that a reading costs no way through the directories. Any thread.
class KeptFile {
public:
    explicit KeptFile(std::filesystem::path path) : path_(std::move(path)) {}

    /// The text as it is now. Absent when it cannot be read or is longer than SystemFiles::kLongestText; the
    /// next call tries anew.
    [[nodiscard]] std::optional<std::string> text() const;

private:
    [[nodiscard]] bool readInto(std::string& bytes) const;

    const std::filesystem::path path_;
    mutable std::mutex mutex_;
    mutable Descriptor descriptor_;      // guarded by mutex_
    mutable std::size_t usualSize_ = 0;  // guarded by mutex_
};

}  // namespace halvane::linux
