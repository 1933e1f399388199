#pragma once

#include <filesystem>
#include <string_view>

namespace halvane::server {

/// A file's content under another name beside it, whole, on the disk and readable only by the server's own user (0600),
/// until it takes the file's name. Goes with this object when it never does. One thread.
class StagedFile {
public:
    /// A neighbour of `file`. Throws std::system_error with the path in its text.
    StagedFile(std::filesystem::path file, std::string_view content);
    ~StagedFile();
    StagedFile(const StagedFile&) = delete;
    StagedFile& operator=(const StagedFile&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return neighbour_; }
    /// Takes the file's name. False, and nothing changes, when that name is taken. Throws std::system_error.
    [[nodiscard]] bool take();
    /// Takes the name of a file of the same folder, whatever has it. Throws std::system_error.
    void replace(const std::filesystem::path& target);

private:
    const std::filesystem::path file_;
    const std::filesystem::path neighbour_;
};

}  // namespace halvane::server
