#pragma once

#include "server/Clock.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace halvane::server {

/// Mail that waits to be sent, a file (0600) each, in the form in which a mail program takes it.
/// Any thread; throws std::filesystem::filesystem_error or std::system_error when the disk refuses.
class Outbox {
public:
    struct Mail {
        std::string to;
        std::string subject;
        std::string text;
    };

    Outbox(std::filesystem::path directory, Clock clock) : directory_(std::move(directory)), clock_(std::move(clock)) {}

    void put(const Mail& mail);
    /// File names, oldest first.
    [[nodiscard]] std::vector<std::string> names() const;
    /// The mail as it stands in its file; absent when there is none of that name.
    [[nodiscard]] std::optional<std::string> read(const std::string& name) const;

private:
    std::filesystem::path directory_;
    Clock clock_;
};

}  // namespace halvane::server
