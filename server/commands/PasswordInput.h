#pragma once

#include "server/commands/Command.h"
#include "util/Result.h"

#include <string>

namespace halvane::server {

/// A new password, never from the argument list, where every user of the computer could read it.
struct PasswordInput {
    static constexpr std::size_t kShortest = 8;

    /// HALVANE_PASSWORD, else the first line of the console's input; a terminal is asked, without echo.
    /// Error: none, too short or too long, not UTF-8.
    static util::Result<std::string> read(Console& console);
    static util::Result<std::string> checked(std::string password);
};

}  // namespace halvane::server
