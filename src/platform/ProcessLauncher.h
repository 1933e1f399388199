#pragma once

#include "util/Bytes.h"
#include "util/Result.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace halvane::platform {

/// A program to start. Arguments go to it verbatim, no shell is involved.
struct ProcessRequest {
    std::string launchPath;  ///< as the system names it, such as "/usr/bin/security"
    std::vector<std::string> arguments;
    /// Added to the child's environment: other users cannot read that, so secrets travel here.
    std::vector<std::pair<std::string, std::string>> environment;
};

/// Starts child processes. Launch paths are looked up under the tool root first. Standard error and
/// input are inherited; no other descriptor is. Any thread.
class ProcessLauncher {
public:
    /// `exitStatus`: the program's exit code, or 128 + signal; -1 when somebody else collected it.
    using Termination = std::function<void(int exitStatus)>;

    virtual ~ProcessLauncher() = default;

    /// Runs the program and answers all bytes of its standard output, up to end of file. Blocks. Does
    /// not look at the exit status. Errors: the program could not be started, or wrote without end.
    virtual util::Result<util::Bytes> readOutput(const ProcessRequest& request) = 0;

    /// Starts the program and returns at once; its output goes where this program's own goes.
    /// `onTermination` is called exactly once, on a thread of the launcher, when it has ended; never
    /// when starting failed. It may block, and other terminations then wait for it.
    virtual util::Result<void> launch(const ProcessRequest& request, Termination onTermination) = 0;
};

}  // namespace halvane::platform
