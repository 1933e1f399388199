#pragma once

#include "linux/base/Descriptor.h"

#include <sys/stat.h>

#include <filesystem>

namespace halvane::linux {

/// The lock that the one running client holds, by flock on a file: it ends with its process, however
/// that ends. The file itself stays. One thread.
class InstanceLock {
public:
    explicit InstanceLock(std::filesystem::path directory) : directory_(std::move(directory)) {}

    [[nodiscard]] bool isHeld() const { return static_cast<bool>(held_); }
    enum class Outcome {
        Taken,
        HeldByOther,
        Impossible  ///< the file cannot be made, or the file system has no locks
    };
    Outcome tryTake();
    /// Puts a new file, locked by this process, in the place of the one that `tryTake` found held.
    /// False when another process was quicker.
    bool replaceOther();

private:
    const std::filesystem::path directory_;
    Descriptor held_;
    struct stat other_ {};  ///< the file that somebody else had locked
};

}  // namespace halvane::linux
