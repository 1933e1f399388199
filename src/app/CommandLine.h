#pragma once

#include "util/Result.h"

#include <optional>
#include <string>
#include <vector>

namespace halvane::app {

/// What the program was started with.
struct CommandLine {
    enum class Action { Run, ShowHelp, ShowVersion };

    /// What the running client, this one or an earlier one, is asked to do.
    enum class Wish { None, Uninstall, Quit };

    Action action = Action::Run;
    Wish wish = Wish::None;
    std::optional<std::string> server;  ///< base address, without a slash at its end

    /// `arguments` without the program's name. Errors are sentences for the person at the terminal:
    /// an unknown option, a missing or unusable value, a word that is no option, two wishes at once.
    static util::Result<CommandLine> parse(const std::vector<std::string>& arguments);

    /// A usable base address with slashes at its end removed, or absent.
    [[nodiscard]] static std::optional<std::string> serverAddress(std::string text);

    [[nodiscard]] static std::string help();
};

}  // namespace halvane::app
