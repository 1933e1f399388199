#include "installer/SystemProgram.h"

#include "linux/ChildStart.h"
#include "linux/Pipe.h"

#include <fcntl.h>
#include <sys/wait.h>

#include <cerrno>

namespace halvane::installer {

namespace {

int exitCodeOf(int waitStatus) {
    constexpr int kSignalled = 128;
    return WIFEXITED(waitStatus) ? WEXITSTATUS(waitStatus) : kSignalled + WTERMSIG(waitStatus);
}

}  // namespace

std::vector<std::string> SystemProgram::words(const std::vector<std::string>& arguments) const {
    std::vector<std::string> all{path_};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return all;
}

util::Result<util::Bytes> SystemProgram::outputOf(const std::vector<std::string>& arguments) const {
    auto pipe = linux::Pipe::open("run " + path_);
    if (!pipe) return pipe.error();
    linux::ChildStart child{.program = path_, .arguments = words(arguments), .standardOutput = pipe->writeEnd.get()};
    child.withoutInput = true;
    const auto process = child.start("run " + path_);
    if (!process) return process.error();
    pipe->writeEnd.close();
    auto output = linux::Pipe::readToEnd(pipe->readEnd.get(), "read what " + path_ + " says");
    const int code = exitCodeOf(linux::ChildStart::awaitEnd(*process));
    if (output && code != 0) return util::serviceError(path_ + " ended with " + std::to_string(code));
    return output;
}

util::Result<int> SystemProgram::run(const std::vector<std::string>& arguments, const std::filesystem::path& log) const {
    const linux::Descriptor file(::open(log.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!file) return util::fileError(errno, "write " + log.string());
    linux::ChildStart child{.program = path_, .arguments = words(arguments), .standardOutput = file.get(), .standardError = file.get()};
    child.withoutInput = true;
    child.withoutInterruption = true;
    const auto process = child.start("run " + path_);
    if (!process) return process.error();
    return exitCodeOf(linux::ChildStart::awaitEnd(*process));
}

}  // namespace halvane::installer
