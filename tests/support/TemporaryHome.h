#pragma once

#include <filesystem>

namespace halvane::test {

/// A home of the test's own: HOME and every XDG directory point into a new private directory, which
/// goes when this object does. The runtime directory is 0700, as sessions make it.
class TemporaryHome {
public:
    TemporaryHome();
    ~TemporaryHome();
    TemporaryHome(const TemporaryHome&) = delete;
    TemporaryHome& operator=(const TemporaryHome&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

}  // namespace halvane::test
