#include "linux/ChildStart.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <filesystem>

namespace halvane::linux {

namespace {

constexpr int kExtra = STDERR_FILENO + 1;

/// The system's calls take text that ends at a NUL, and an environment of NAME=value.
bool canBePassed(const ChildStart& child) {
    const auto hasNul = [](const std::string& text) { return text.find('\0') != std::string::npos; };
    return !child.arguments.empty() && !child.arguments.front().empty() && !hasNul(child.program) &&
           std::ranges::none_of(child.arguments, hasNul) && std::ranges::none_of(child.environment, [&](const auto& entry) {
               return entry.first.empty() || entry.first.find('=') != std::string::npos || hasNul(entry.first) || hasNul(entry.second);
           });
}

std::vector<std::string> environmentFor(const ChildStart& child) {
    std::vector<std::string> all;
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) all.emplace_back(*entry);
    for (const auto& [name, value] : child.environment) {
        std::string assignment = name + '=';
        std::erase_if(all, [&assignment](const std::string& other) { return other.starts_with(assignment); });
        all.push_back(assignment.append(value));
    }
    return all;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (auto& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

class SpawnSettings {
public:
    explicit SpawnSettings(const ChildStart& child) {
        ::posix_spawnattr_init(&attributes_);
        ::posix_spawn_file_actions_init(&actions_);
        sigset_t signals;
        ::sigemptyset(&signals);
        ::posix_spawnattr_setsigmask(&attributes_, &signals);
        ::sigfillset(&signals);
        if (child.withoutInterruption)
            for (const int signal : {SIGHUP, SIGINT, SIGTERM}) ::sigdelset(&signals, signal);
        ::posix_spawnattr_setsigdefault(&attributes_, &signals);
        ::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    ~SpawnSettings() {
        ::posix_spawn_file_actions_destroy(&actions_);
        ::posix_spawnattr_destroy(&attributes_);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;

    /// 0, or the errno of what failed.
    int spawn(pid_t& pid, const ChildStart& child, char** arguments, char** environment) {
        // Also right when a descriptor is the standard one itself, as it is when ours was closed: the child's stays open then.
        int code = duplicate(child.standardInput, STDIN_FILENO);
        if (code == 0) code = duplicate(child.standardOutput, STDOUT_FILENO);
        if (code == 0) code = duplicate(child.standardError, STDERR_FILENO);
        if (code == 0) code = duplicate(child.extra, kExtra);
        if (code == 0 && child.withoutInput && !child.standardInput)
            code = ::posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        std::error_code unknown;
        if (code == 0 && child.directory && std::filesystem::is_directory(*child.directory, unknown) &&
            ::access(child.directory->c_str(), X_OK) == 0)
            code = ::posix_spawn_file_actions_addchdir_np(&actions_, child.directory->c_str());
        if (code == 0) code = ::posix_spawn_file_actions_addclosefrom_np(&actions_, child.extra ? kExtra + 1 : kExtra);
        return code != 0 ? code : ::posix_spawn(&pid, child.program.c_str(), &actions_, &attributes_, arguments, environment);
    }

private:
    int duplicate(const std::optional<int>& from, int to) { return from ? ::posix_spawn_file_actions_adddup2(&actions_, *from, to) : 0; }

    posix_spawnattr_t attributes_{};
    posix_spawn_file_actions_t actions_{};
};

}  // namespace

util::Result<pid_t> ChildStart::start(const std::string& subject) const {
    if (!canBePassed(*this)) return util::fileError(EINVAL, subject);
    auto words = arguments;
    auto variables = environmentFor(*this);
    pid_t pid = -1;
    const int code = SpawnSettings(*this).spawn(pid, *this, pointersTo(words).data(), pointersTo(variables).data());
    if (code != 0) return util::fileError(code, subject);
    return pid;
}

int ChildStart::awaitEnd(pid_t child) {
    int status = 0;
    pid_t answer = -1;
    while ((answer = ::waitpid(child, &status, 0)) < 0 && errno == EINTR) {
    }
    constexpr int kNobodyKnows = 127 << 8;  // as a wait status has it
    return answer < 0 ? kNobodyKnows : status;
}

}  // namespace halvane::linux
