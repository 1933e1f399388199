#pragma once

#include <optional>
#include <string>
#include <variant>

namespace halvane::platform {

/// Runs scripts of the form
///
///     do shell script "COMMAND" [with administrator privileges]
///
/// where a backslash before a quote or a backslash inside the quotes stands for it. Blocks until the command has
/// ended. Any thread.
class ScriptInterpreter {
public:
    struct Failure {
        std::optional<int> number;  ///< the command's exit code, or one of those below
        std::optional<std::string> message;
    };
    static constexpr int kUserCancelled = -128;
    static constexpr int kSyntaxError = -2741;

    virtual ~ScriptInterpreter() = default;
    /// The command's standard output without its last line feed, or why there is none.
    virtual std::variant<std::string, Failure> execute(const std::string& source) = 0;
};

}  // namespace halvane::platform
