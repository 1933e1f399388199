#include "support/ChildProcess.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>

extern char** environ;

namespace halvane::test {

namespace {

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (auto& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

std::vector<std::string> environmentWith(const std::vector<std::pair<std::string, std::string>>& additions) {
    std::vector<std::string> all;
    for (char** entry = environ; *entry != nullptr; ++entry) all.emplace_back(*entry);
    for (const auto& [name, value] : additions) {
        std::erase_if(all, [&name](const std::string& entry) { return entry.starts_with(name + "="); });
        all.push_back(name + "=" + value);
    }
    return all;
}

}  // namespace

ChildProcess::ChildProcess(std::vector<std::string> arguments, std::vector<std::pair<std::string, std::string>> environment,
                           const std::string& input) {
    // Should the test crash, its programs end with it.
    arguments.insert(arguments.begin(), {"setpriv", "--pdeathsig", "KILL", "--"});
    int in[2];
    int out[2];
    if (::pipe2(in, O_CLOEXEC) != 0 || ::pipe2(out, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    output_ = out[0];
    const bool given = ::write(in[1], input.data(), input.size()) == static_cast<ssize_t>(input.size());
    ::close(in[1]);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, in[0], STDIN_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    auto variables = environmentWith(environment);
    const int code =
        ::posix_spawnp(&pid_, arguments.front().c_str(), &actions, nullptr, pointersTo(arguments).data(), pointersTo(variables).data());
    ::posix_spawn_file_actions_destroy(&actions);
    ::close(in[0]);
    ::close(out[1]);
    if (code != 0 || !given) throw std::runtime_error("cannot start " + arguments.front());
}

ChildProcess::~ChildProcess() {
    ::kill(pid_, SIGKILL);
    ::waitpid(pid_, nullptr, 0);
    ::close(output_);
}

std::string ChildProcess::readLine() {
    std::string line;
    for (char next = 0; ::read(output_, &next, 1) == 1 && next != '\n';) line.push_back(next);
    return line;
}

}  // namespace halvane::test
