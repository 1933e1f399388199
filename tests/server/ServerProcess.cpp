#include "server/ServerProcess.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>

namespace halvane::test {

ServerProcess::ServerProcess(std::vector<std::string> arguments, const std::string& messages) {
    int pipe[2] = {-1, -1};
    if (::pipe2(pipe, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, pipe[1], STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, messages.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    arguments.insert(arguments.begin(), HALVANE_SERVER_PROGRAM);
    std::vector<char*> words;
    for (auto& argument : arguments) words.push_back(argument.data());
    words.push_back(nullptr);
    const int problem = ::posix_spawn(&process_, HALVANE_SERVER_PROGRAM, &actions, nullptr, words.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(pipe[1]);
    output_ = pipe[0];
    if (problem != 0) throw std::runtime_error("cannot start " HALVANE_SERVER_PROGRAM);
}

ServerProcess::~ServerProcess() {
    if (process_ > 0) end(SIGKILL);
    ::close(output_);
}

std::string ServerProcess::line() {
    std::string text;
    char c = 0;
    while (::read(output_, &c, 1) == 1 && c != '\n') text += c;
    return text;
}

int ServerProcess::end(int signal) {
    if (signal != 0) ::kill(process_, signal);
    int status = 0;
    ::waitpid(process_, &status, 0);
    process_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

}  // namespace halvane::test
