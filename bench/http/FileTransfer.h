#pragma once

#include <filesystem>
#include <string>

namespace halvane::bench {

/// One way of moving a file that is too large to stand in memory. Blocks. False, or an exception, unless all of it
/// went well.
class FileTransfer {
public:
    virtual ~FileTransfer() = default;
    /// GET, the body to a new file.
    virtual bool download(const std::string& url, const std::filesystem::path& destination) = 0;
    /// PUT, the body from a file.
    virtual bool upload(const std::string& url, const std::filesystem::path& source) = 0;
};

}  // namespace halvane::bench
