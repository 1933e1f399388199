#pragma once

#include <filesystem>

namespace halvane::platform {

/// Where this user's files and the application's own stand. Paths only: whoever writes there makes
/// them. Any thread; the answers do not change while the program runs.
class Directories {
public:
    virtual ~Directories() = default;
    [[nodiscard]] virtual std::filesystem::path documents() const = 0;
    [[nodiscard]] virtual std::filesystem::path caches() const = 0;
    [[nodiscard]] virtual std::filesystem::path temporary() const = 0;
    /// Files shipped with the application, read-only.
    [[nodiscard]] virtual std::filesystem::path resources() const = 0;
};

}  // namespace halvane::platform
