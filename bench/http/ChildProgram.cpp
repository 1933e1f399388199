#include "ChildProgram.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <csignal>
#include <stdexcept>

namespace halvane::bench {

ChildProgram::ChildProgram(const std::vector<std::string>& command) : name_(command.at(0)) {
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (const std::string& argument : command) arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe for " + name_);
    const pid_t self = ::getpid();
    process_ = ::fork();
    if (process_ == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (::getppid() != self) ::_exit(127);
        sigset_t none;
        ::sigemptyset(&none);
        ::pthread_sigmask(SIG_SETMASK, &none, nullptr);
        ::dup2(ends[1], STDOUT_FILENO);
        ::execv(arguments[0], arguments.data());
        ::_exit(127);
    }
    ::close(ends[1]);
    output_ = ends[0];
    if (process_ < 0) {
        ::close(output_);
        throw std::runtime_error("cannot start " + name_);
    }
}

ChildProgram::~ChildProgram() {
    ::close(output_);
    if (process_ < 0) return;
    ::kill(process_, SIGKILL);
    ::waitpid(process_, nullptr, 0);
}

bool ChildProgram::isRunning() {
    if (process_ > 0 && ::waitpid(process_, &status_, WNOHANG) == process_) process_ = -1;
    return process_ > 0;
}

std::string ChildProgram::finish() {
    std::string text;
    char buffer[4096];
    for (ssize_t count = 0; (count = ::read(output_, buffer, sizeof buffer)) > 0;) text.append(buffer, static_cast<std::size_t>(count));
    if (process_ > 0) ::waitpid(process_, &status_, 0);
    process_ = -1;
    if (!WIFEXITED(status_) || WEXITSTATUS(status_) != 0) throw std::runtime_error(name_ + " failed");
    return text;
}

}  // namespace halvane::bench
