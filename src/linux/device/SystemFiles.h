#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace halvane::linux {

/// The texts in which the kernel and the distribution describe the machine (/proc, /sys, /etc), below
/// a root: "/" in life, a directory of recorded texts in tests. Paths are relative to that root. Any thread.
class SystemFiles {
public:
    /// Far beyond /proc/cpuinfo of the largest machines; nothing longer is read.
    static constexpr std::size_t kLongestText = std::size_t{16} << 20;

    explicit SystemFiles(std::filesystem::path root = "/") : root_(std::move(root)) {}

    /// The whole text; absent when it cannot be read or is too long.
    [[nodiscard]] std::optional<std::string> text(const std::string& path) const;
    /// The first line without blanks and NULs at its ends (device-tree values end in one); absent also when that is empty.
    [[nodiscard]] std::optional<std::string> line(const std::string& path) const;
    /// The line as a decimal number without a sign; absent for anything else.
    [[nodiscard]] std::optional<unsigned long long> number(const std::string& path) const;
    /// Names in a directory, sorted; empty when it cannot be read.
    [[nodiscard]] std::vector<std::string> names(const std::string& directory) const;
    [[nodiscard]] bool exists(const std::string& path) const;
    /// Where the file stands for the rest of the system.
    [[nodiscard]] std::filesystem::path whole(const std::string& path) const { return root_ / path; }

private:
    std::filesystem::path root_;
};

/// The number that `text` is from its first to its last character.
std::optional<unsigned long long> wholeNumber(const std::string& text, int base = 10);

}  // namespace halvane::linux
