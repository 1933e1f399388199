#pragma once

#include "util/Result.h"

#include <sys/types.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace halvane::linux {

/// How to start a child: by posix_spawn, with no signal blocked, none ignored unless it is asked for, and with no descriptor of ours but
/// the standard ones and those named here. A value; any thread.
struct ChildStart {
    std::string program;                                                ///< the file
    std::vector<std::string> arguments;                                 ///< with the program's own name first
    std::vector<std::pair<std::string, std::string>> environment = {};  ///< added to ours
    std::optional<int> standardInput = {};
    std::optional<int> standardOutput = {};
    std::optional<int> standardError = {};
    /// Becomes the child's descriptor 3.
    std::optional<int> extra = {};
    /// Of SIGHUP, SIGINT and SIGTERM it goes on ignoring what this process ignores: it must not be stopped in the middle.
    bool withoutInterruption = false;
    bool withoutInput = false;                  ///< reads from /dev/null; without effect when there is an input
    std::optional<std::string> directory = {};  ///< one that cannot be entered: ours

    /// The child's process id. Error: an errno, `subject` in its text. Texts with a NUL are EINVAL.
    [[nodiscard]] util::Result<pid_t> start(const std::string& subject) const;

    /// Waits for a child's end and collects it: its wait status; that of a program which ended with 127, when it is no child of ours.
    /// Blocks.
    static int awaitEnd(pid_t child);
};

}  // namespace halvane::linux
