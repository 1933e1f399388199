#pragma once

#include "linux/PkexecChild.h"
#include "platform/ScriptInterpreter.h"

namespace halvane::linux {

/// Runs the command by /bin/sh, for the administrator through pkexec. Its standard error becomes the failure's message.
class ShellScriptInterpreter final : public platform::ScriptInterpreter {
public:
    explicit ShellScriptInterpreter(PkexecChild pkexec = PkexecChild()) : pkexec_(std::move(pkexec)) {}

    std::variant<std::string, Failure> execute(const std::string& source) override;

private:
    const PkexecChild pkexec_;
};

}  // namespace halvane::linux
