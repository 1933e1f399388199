#pragma once

#include "util/Bytes.h"

#include <filesystem>
#include <mutex>
#include <string>

namespace halvane::platform {
class FileStore;
}

namespace halvane::ui {

/// The pictures' bytes on disk, for the next start: the 64 that were kept last. Best effort, nothing in it fails.
/// Any thread.
class AvatarCache {
public:
    AvatarCache(platform::FileStore& files, std::filesystem::path directory);

    /// Empty when there are none.
    [[nodiscard]] util::Bytes read(const std::string& url) const;
    void keep(const std::string& url, const util::Bytes& bytes);

private:
    void noteNewest(const std::string& name);

    platform::FileStore& files_;
    const std::filesystem::path directory_;
    std::mutex mutex_;  ///< held while the list of what is kept changes
};

}  // namespace halvane::ui
