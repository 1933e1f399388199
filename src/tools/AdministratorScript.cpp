#include "tools/AdministratorScript.h"

#include "platform/ScriptInterpreter.h"
#include "util/Log.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace halvane::tools {

ShellScriptResult runShellScriptAsAdministrator(platform::ScriptInterpreter& interpreter, util::Log& log, const std::string& command,
                                                const std::vector<std::string>& arguments, bool asAdministrator) {
    const std::string line = fmt::format("{} {}", command, fmt::join(arguments, " "));
    const std::string script = fmt::format("do shell script \"{}\" {}", line, asAdministrator ? "with administrator privileges" : "");
    log.write("script = " + script);
    const auto answer = interpreter.execute(script);
    if (const auto* output = std::get_if<std::string>(&answer)) return {.success = true, .output = *output};
    const auto& failure = std::get<platform::ScriptInterpreter::Failure>(answer);
    if (failure.number == platform::ScriptInterpreter::kUserCancelled)
        return {.errorDescription = "The administrator password is required to do this."};
    return {.errorDescription = failure.message.value_or("")};
}

}  // namespace halvane::tools
