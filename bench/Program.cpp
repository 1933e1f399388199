#include "Program.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace halvane::bench {

namespace {

/// The number after "name:" in a file of lines; 0 when there is none.
std::uint64_t numberOf(const std::string& file, const std::string& name) {
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(name + ":")) return std::strtoull(line.c_str() + name.size() + 1, nullptr, 10);
    }
    return 0;
}

}  // namespace

Program::Program(const std::vector<std::string>& command, const std::vector<std::string>& environment, int keptDescriptor) {
    const auto pointers = [](const std::vector<std::string>& texts) {
        std::vector<char*> list;
        list.reserve(texts.size() + 1);
        for (const auto& text : texts) list.push_back(const_cast<char*>(text.c_str()));
        list.push_back(nullptr);
        return list;
    };
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    if (keptDescriptor >= 0) posix_spawn_file_actions_adddup2(&actions, keptDescriptor, 3);
    const int failed =
        posix_spawnp(&process_, command[0].c_str(), &actions, nullptr, pointers(command).data(), pointers(environment).data());
    posix_spawn_file_actions_destroy(&actions);
    if (failed != 0) throw std::runtime_error("cannot start " + command[0] + ": " + std::strerror(failed));
}

Program::~Program() {
    kill(process_, SIGTERM);
    for (int i = 0; i < 300; ++i) {
        if (waitpid(process_, nullptr, WNOHANG) != 0) return;
        usleep(10'000);
    }
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
}

std::string Program::file(const std::string& name) const { return "/proc/" + std::to_string(process_) + "/" + name; }

double Program::processorTime() const {
    clockid_t clock{};
    timespec time{};
    if (clock_getcpuclockid(process_, &clock) != 0 || clock_gettime(clock, &time) != 0)
        throw std::runtime_error("a program ended by itself");
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

Program::WakeUps Program::wakeUps() const {
    WakeUps found;
    for (const auto& thread : std::filesystem::directory_iterator(file("task")))
        found[thread.path().filename()] = numberOf(thread.path() / "status", "voluntary_ctxt_switches");
    return found;
}

std::uint64_t Program::wakeUpsSince(const WakeUps& before) const {
    std::uint64_t count = 0;
    for (const auto& [thread, now] : wakeUps()) count += now - (before.contains(thread) ? before.at(thread) : 0);
    return count;
}

std::uint64_t Program::residentSize() const { return numberOf(file("smaps_rollup"), "Rss") * 1024; }

std::uint64_t Program::privateSize() const {
    const std::string memory = file("smaps_rollup");
    return (numberOf(memory, "Private_Dirty") + numberOf(memory, "Private_Clean")) * 1024;
}

}  // namespace halvane::bench
