#pragma once

#include "util/Error.h"

#include <functional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace halvane::systools {

using Arguments = std::vector<std::string>;  ///< without the program's own name

/// Exit codes of our programs.
enum ExitCode : int {
    kSuccess = 0,
    kFailure = 1,         ///< understood, but it could not be done
    kNotFound = 44,       ///< no certificate, profile or service of that name
    kNoDevice = 45,       ///< no device that could join, or none of that name
    kNoNetwork = 46,      ///< no profile has that network, or it is out of reach
    kWrongPassword = 47,  ///< of a certificate's file
    kUsage = 64,          ///< the arguments make no sense
    kMalformed = 65,      ///< the file is not what it should be
    kNoService = 69,      ///< NetworkManager, or the bus to it, is not there
    kTimedOut = 75,       ///< no answer, or no network, in time
    kRefused = 76,        ///< the network did not let us in, or we did not trust it
    kForbidden = 77       ///< the system's policy forbids it to this user
};

inline constexpr const char* kToolErrorDomain = "halvane.tool";
/// An error that a program ends with: `code` is what it answers.
inline util::Error toolError(ExitCode code, std::string description) { return {kToolErrorDomain, code, std::move(description)}; }

/// What a program says of its failures on standard error, and the exit code that goes with it. A value.
struct Complaint {
    const char* program;
    const char* usage;

    int misused(std::ostream& err, const std::string& message) const;
    /// A `toolError` has its own code; a file that is not what it should be is kMalformed, all else kFailure.
    int failed(std::ostream& err, const util::Error& error, const std::string& subject = {}) const;
};

/// A program's work: results go to `out`, messages to `err`, and it answers the exit code.
using Tool = std::function<int(const Arguments& arguments, std::ostream& out, std::ostream& err)>;

Arguments argumentsOf(int argc, char** argv);

/// Runs `tool` as the process that we are. Whatever happens the process ends within 20 seconds: the
/// client waits for our output on the thread that draws its windows.
int runTool(const char* name, const Arguments& arguments, const Tool& tool);

}  // namespace halvane::systools
