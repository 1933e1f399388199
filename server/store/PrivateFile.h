#pragma once

#include <filesystem>
#include <string_view>

namespace halvane::server {

/// Files that only the server's own user may read, written whole or not at all. Any thread; throw
/// std::system_error with the path in its text.
struct PrivateFile {
    enum class Created { Yes, AlreadyThere };

    /// 0700, with its parents.
    static void makeDirectory(const std::filesystem::path& directory);
    /// Leaves a file of that name as it is: of several processes that write at once, one wins.
    static Created write(const std::filesystem::path& file, std::string_view content);
};

}  // namespace halvane::server
