#pragma once

#include "util/Bytes.h"

#include <filesystem>
#include <functional>
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
    /// What is in the file; `make` gives its content where there is none yet.
    static util::Bytes readOrMake(const std::filesystem::path& file, const std::function<util::Bytes()>& make);
};

}  // namespace halvane::server
