#pragma once

#include "platform/FileStore.h"

#include <cstddef>

namespace halvane::linux {

/// Files of the file system. A symbolic link at the end of a written path is replaced, never
/// followed. What is written has reached the disk when `write` answers. Only regular files are
/// read, at most `kLargestFile` bytes: nothing that a path leads to can make a reader wait.
class PosixFileStore final : public platform::FileStore {
public:
    static constexpr std::size_t kLargestFile = std::size_t{256} << 20;

    util::Result<util::Bytes> read(const std::filesystem::path& path) const override;
    util::Result<void> write(const std::filesystem::path& path, const util::Bytes& bytes) override;
    util::Result<void> makeDirectory(const std::filesystem::path& path) override;
    util::Result<void> remove(const std::filesystem::path& path) override;
    util::Result<void> removeDirectory(const std::filesystem::path& path) override;
    [[nodiscard]] bool exists(const std::filesystem::path& path) const override;
};

}  // namespace halvane::linux
