#include "systools/ChildProgram.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace halvane::test {

namespace {

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> all;
    for (auto& text : texts) all.push_back(text.data());
    all.push_back(nullptr);
    return all;
}

std::string contents(const std::filesystem::path& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

}  // namespace

std::filesystem::path ChildProgram::output(const char* name) const { return directory_ / name; }

ChildProgram::ChildProgram(const std::string& program, const std::vector<std::string>& arguments,
                           const std::vector<std::pair<std::string, std::string>>& environment) {
    std::string name = (std::filesystem::temp_directory_path() / "halvane-child-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("cannot make " + name);
    directory_ = name;

    std::vector<std::string> words = {program};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<std::string> variables;
    for (const auto& [key, value] : environment) variables.push_back(key + "=" + value);
    for (char** each = environ; *each != nullptr; ++each) variables.emplace_back(*each);

    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output("out").c_str(), O_WRONLY | O_CREAT, 0600);
    ::posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, output("err").c_str(), O_WRONLY | O_CREAT, 0600);
    const int failed = ::posix_spawnp(&pid_, program.c_str(), &actions, nullptr, pointers(words).data(), pointers(variables).data());
    ::posix_spawn_file_actions_destroy(&actions);
    if (failed != 0) throw std::runtime_error("cannot start " + program);
}

ChildProgram::~ChildProgram() {
    if (pid_ > 0) waitFor(std::chrono::milliseconds(0));
    std::error_code ignored;
    std::filesystem::remove_all(directory_, ignored);
}

ProgramResult ChildProgram::waitFor(std::chrono::milliseconds longest) {
    pollfd ended{static_cast<int>(::syscall(SYS_pidfd_open, pid_, 0)), POLLIN, 0};
    if (::poll(&ended, 1, static_cast<int>(longest.count())) <= 0) ::kill(pid_, SIGKILL);
    int status = 0;
    ::waitpid(pid_, &status, 0);
    ::close(ended.fd);
    pid_ = -1;
    return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), contents(output("out")), contents(output("err"))};
}

ProgramResult runProgram(const std::string& program, const std::vector<std::string>& arguments,
                         const std::vector<std::pair<std::string, std::string>>& environment) {
    return ChildProgram(program, arguments, environment).wait();
}

std::string inToolRoot(const std::string& path) { return std::string(HALVANE_TEST_TOOL_ROOT) + "/" + path; }

}  // namespace halvane::test
