#pragma once

#include "util/Bytes.h"
#include "util/Result.h"

#include <cstddef>
#include <filesystem>

namespace halvane::server {

/// Files that are read whole and must fit into memory. Any thread.
struct BoundedFile {
    /// All bytes of a regular file. Error, with the path in its text: none, not readable, larger than `most`
    /// (then it has not been read), or being written.
    static util::Result<util::Bytes> read(const std::filesystem::path& file, std::size_t most);
};

}  // namespace halvane::server
