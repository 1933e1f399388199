#include "linux/ShellScriptInterpreter.h"

#include "linux/ChildStart.h"
#include "linux/Pipe.h"
#include "util/Text.h"

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <string_view>

namespace halvane::linux {

namespace {

using Failure = platform::ScriptInterpreter::Failure;

constexpr std::string_view kVerb = "do shell script \"";
constexpr std::string_view kAsAdministrator = "with administrator privileges";
constexpr const char* kShell = "/bin/sh";

struct Script {
    std::string command;
    bool asAdministrator = false;
};

std::optional<Script> parsed(const std::string& source) {
    if (!source.starts_with(kVerb)) return std::nullopt;
    Script script;
    std::size_t at = kVerb.size();
    for (; at < source.size() && source[at] != '"'; ++at) {
        const bool escapes = source[at] == '\\' && at + 1 < source.size() && (source[at + 1] == '"' || source[at + 1] == '\\');
        if (escapes) ++at;
        script.command += source[at];
    }
    if (at == source.size() || script.command.find('\0') != std::string::npos) return std::nullopt;
    const std::string rest = util::trimmed(std::string_view(source).substr(at + 1));
    script.asAdministrator = rest == kAsAdministrator;
    if (!rest.empty() && !script.asAdministrator) return std::nullopt;
    return script;
}

/// Both streams up to their ends. A child that waits for us to read the one does not write the other. False when one
/// of them has no end.
bool readBoth(std::array<Descriptor*, 2> streams, std::array<std::string, 2>& texts) {
    while (*streams[0] || *streams[1]) {
        pollfd waits[] = {{streams[0]->get(), POLLIN, 0}, {streams[1]->get(), POLLIN, 0}};
        if (::poll(waits, 2, -1) < 0 && errno != EINTR) return false;
        for (std::size_t i = 0; i < 2; ++i) {
            if (waits[i].revents == 0) continue;
            char buffer[16384];
            const auto got = ::read(streams[i]->get(), buffer, sizeof buffer);
            if (got > 0) texts[i].append(buffer, static_cast<std::size_t>(got));
            if (got == 0 || (got < 0 && errno != EINTR)) streams[i]->close();
            if (texts[i].size() > Pipe::kLargestOutput) return false;
        }
    }
    return true;
}

/// /bin/sh with the rights that we have.
PkexecChild::Started startPlainly(const std::string& command) {
    auto output = Pipe::open("start the shell");
    auto errors = Pipe::open("start the shell");
    if (!output || !errors) return {.status = platform::kAuthorizationToolExecuteFailure};
    const ChildStart child{.program = kShell,
                           .arguments = {kShell, "-c", command},
                           .standardOutput = output->writeEnd.get(),
                           .standardError = errors->writeEnd.get(),
                           .withoutInput = true};
    const auto process = child.start("start the shell");
    if (!process) return {.status = platform::kAuthorizationToolExecuteFailure};
    return {.process = *process, .output = std::move(output->readEnd), .errors = std::move(errors->readEnd)};
}

Failure failureOf(platform::OSStatus status) {
    switch (status) {
        case platform::kAuthorizationCanceled:
            return {platform::ScriptInterpreter::kUserCancelled, "User canceled."};
        case platform::kAuthorizationDenied:
            return {status, "The administrator's rights were refused."};
        case platform::kAuthorizationNotAvailable:
            return {status, "Nothing on this system can give the administrator's rights."};
        default:
            return {status, "The command could not be executed."};
    }
}

void dropLastLineFeed(std::string& text) {
    if (text.ends_with('\n')) text.pop_back();
}

}  // namespace

std::variant<std::string, Failure> ShellScriptInterpreter::execute(const std::string& source) {
    const auto script = parsed(source);
    if (!script) return Failure{kSyntaxError, "Expected: do shell script \"COMMAND\" [with administrator privileges]"};
    std::error_code unknown;
    auto started = script->asAdministrator ? pkexec_.start({.program = kShell,
                                                            .arguments = {"-c", script->command},
                                                            .workingDirectory = std::filesystem::current_path(unknown),
                                                            .readsErrors = true})
                                           : startPlainly(script->command);
    if (started.status != platform::kAuthorizationSuccess) return failureOf(started.status);

    std::array<std::string, 2> texts;
    const bool ended = readBoth({&started.output, &started.errors}, texts);
    // One that writes without end, and is not ours to kill, ends when nobody reads any more.
    started.output.close();
    started.errors.close();
    if (!ended) ::kill(started.process, SIGKILL);
    const int status = ChildStart::awaitEnd(started.process);
    auto& [output, errors] = texts;
    if (!ended) return Failure{EFBIG, "The command writes without end."};
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0) {
        dropLastLineFeed(output);
        return output;
    }
    dropLastLineFeed(errors);
    return Failure{WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status),
                   errors.empty() ? "The command exited with a non-zero status." : errors};
}

}  // namespace halvane::linux
