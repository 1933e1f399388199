#pragma once

#include <optional>
#include <string>

namespace halvane::app {

/// Constants of the project. Any thread.
class HDCLProjectConfig {
public:
    /// `version`: of the installed program; absent when it is not known.
    explicit HDCLProjectConfig(std::optional<std::string> version) : version_(std::move(version)) {}

    static HDCLProjectConfig& sharedProject();

    /// False in every build.
    [[nodiscard]] bool project_isTestMode() const { return false; }
    [[nodiscard]] std::string project_localVersion() const { return version_.value_or(""); }
    /// Local time as "yyyy-MM-dd HH:mm:ss".
    [[nodiscard]] std::string project_currentTime() const;

private:
    std::optional<std::string> version_;
};

}  // namespace halvane::app
