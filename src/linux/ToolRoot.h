#pragma once

#include <filesystem>
#include <string>

namespace halvane::linux {

/// Where the system's own command-line tools stand. A value.
class ToolRoot {
public:
    explicit ToolRoot(std::filesystem::path directory) : directory_(std::move(directory)) {}

    /// The program for a launch path: the one under the root, when something stands there. The system's own six tools
    /// are looked for nowhere else, since other programs bear their names; every other path is then taken as it stands.
    [[nodiscard]] std::string programFor(const std::string& launchPath) const;

private:
    std::filesystem::path directory_;
};

}  // namespace halvane::linux
