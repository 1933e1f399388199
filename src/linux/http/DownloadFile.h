#pragma once

#include "util/Result.h"

#include <filesystem>
#include <string_view>

namespace halvane::linux_http {

/// A file that comes into being all at once: written to a neighbour (0600) and renamed over the
/// destination by `commit`. Destroyed before that, it leaves nothing. Errors: CannotWriteFile.
class DownloadFile {
public:
    DownloadFile() = default;
    ~DownloadFile();
    DownloadFile(const DownloadFile&) = delete;
    DownloadFile& operator=(const DownloadFile&) = delete;

    /// Makes missing directories, each 0700.
    util::Result<void> open(std::filesystem::path destination);
    util::Result<void> write(std::string_view bytes);
    util::Result<void> commit();
    void discard();

    [[nodiscard]] bool isOpen() const { return descriptor_ >= 0; }
    [[nodiscard]] const std::filesystem::path& destination() const { return destination_; }

private:
    [[nodiscard]] util::Error failure(int errnoValue) const;

    std::filesystem::path destination_;
    std::string neighbour_;
    int descriptor_ = -1;
};

}  // namespace halvane::linux_http
