#pragma once

#include <optional>
#include <string>
#include <vector>

namespace halvane::platform {
class ScriptInterpreter;
}
namespace halvane::util {
class Log;
}

namespace halvane::tools {

struct ShellScriptResult {
    bool success = false;
    std::optional<std::string> output = {};            ///< of a success
    std::optional<std::string> errorDescription = {};  ///< of a failure, perhaps empty
};

/// Runs a shell command line through the script interpreter, if wanted with the administrator's rights. Blocks. Nothing
/// is quoted or escaped: fixed commands only.
ShellScriptResult runShellScriptAsAdministrator(platform::ScriptInterpreter& interpreter, util::Log& log, const std::string& command,
                                                const std::vector<std::string>& arguments, bool asAdministrator);

}  // namespace halvane::tools
