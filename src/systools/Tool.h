#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace halvane::systools {

using Arguments = std::vector<std::string>;  ///< without the program's own name

/// Exit codes of our programs.
enum ExitCode : int {
    kSuccess = 0,
    kFailure = 1,    ///< understood, but it could not be done
    kNotFound = 44,  ///< no certificate of that name
    kUsage = 64      ///< the arguments make no sense
};

/// A program's work: results go to `out`, messages to `err`, and it answers the exit code.
using Tool = std::function<int(const Arguments& arguments, std::ostream& out, std::ostream& err)>;

Arguments argumentsOf(int argc, char** argv);

/// Runs `tool` as the process that we are. Whatever happens the process ends within 20 seconds: the
/// client waits for our output on the thread that draws its windows.
int runTool(const char* name, const Arguments& arguments, const Tool& tool);

}  // namespace halvane::systools
