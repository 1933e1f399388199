#include "linux/PosixProcessLauncher.h"

#include "linux/Descriptor.h"

#include <fcntl.h>
#include <spawn.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <optional>
#include <string_view>
#include <utility>
#include <variant>

namespace halvane::linux {

namespace {

constexpr std::array<std::string_view, 6> kSystemTools = {"/usr/sbin/scutil",  "/usr/sbin/sysctl",  "/usr/sbin/system_profiler",
                                                          "/usr/bin/security", "/usr/bin/profiles", "/usr/sbin/networksetup"};

/// The system's calls take text that ends at a NUL, and an environment of NAME=value.
bool canBePassed(const platform::ProcessRequest& request) {
    const auto hasNul = [](const std::string& text) { return text.find('\0') != std::string::npos; };
    return !request.launchPath.empty() && !hasNul(request.launchPath) && std::ranges::none_of(request.arguments, hasNul) &&
           std::ranges::none_of(request.environment, [&](const auto& entry) {
               return entry.first.empty() || entry.first.find('=') != std::string::npos || hasNul(entry.first) || hasNul(entry.second);
           });
}

std::vector<std::string> environmentFor(const platform::ProcessRequest& request) {
    std::vector<std::string> all;
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) all.emplace_back(*entry);
    for (const auto& [name, value] : request.environment) {
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

/// How a child begins: no signal blocked or ignored, no descriptor of ours but the standard ones.
class SpawnSettings {
public:
    SpawnSettings() {
        ::posix_spawnattr_init(&attributes_);
        ::posix_spawn_file_actions_init(&actions_);
        sigset_t signals;
        ::sigemptyset(&signals);
        ::posix_spawnattr_setsigmask(&attributes_, &signals);
        ::sigfillset(&signals);
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
    int spawn(pid_t& child, const std::string& program, std::optional<int> standardOutput, char** arguments, char** environment) {
        // Also right when `standardOutput` is 1 itself, as it is when ours was closed: the child's stays open then.
        if (standardOutput) {
            if (const int code = ::posix_spawn_file_actions_adddup2(&actions_, *standardOutput, STDOUT_FILENO); code != 0) return code;
        }
        if (const int code = ::posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1); code != 0) return code;
        return ::posix_spawn(&child, program.c_str(), &actions_, &attributes_, arguments, environment);
    }

private:
    posix_spawnattr_t attributes_{};
    posix_spawn_file_actions_t actions_{};
};

util::Result<pid_t> start(const platform::ProcessRequest& request, const std::string& program, std::optional<int> standardOutput) {
    const auto subject = "start " + request.launchPath;
    if (!canBePassed(request)) return util::fileError(EINVAL, subject);
    std::vector<std::string> arguments{request.launchPath};
    arguments.insert(arguments.end(), request.arguments.begin(), request.arguments.end());
    auto environment = environmentFor(request);
    pid_t child = -1;
    const int code = SpawnSettings().spawn(child, program, standardOutput, pointersTo(arguments).data(), pointersTo(environment).data());
    if (code != 0) return util::fileError(code, subject);
    return child;
}

/// Everything up to end of file, or the errno of what failed; EFBIG beyond the limit.
std::variant<util::Bytes, int> readToEnd(int descriptor, std::size_t limit) {
    util::Bytes bytes;
    for (std::size_t filled = 0;;) {
        // Growing by halves keeps the copying of large outputs linear.
        if (bytes.size() == filled) bytes.resize(filled + std::max<std::size_t>(4096, filled / 2));
        const auto got = ::read(descriptor, bytes.data() + filled, bytes.size() - filled);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return errno;
        filled += static_cast<std::size_t>(got);
        if (filled > limit) return EFBIG;
        if (got == 0) {
            bytes.resize(filled);
            return bytes;
        }
    }
}

}  // namespace

std::string PosixProcessLauncher::programFor(const std::string& launchPath) const {
    const auto underRoot = toolRoot_ / std::filesystem::path(launchPath).relative_path();
    std::error_code ignored;
    const bool isSystemTool = std::ranges::find(kSystemTools, launchPath) != kSystemTools.end();
    return isSystemTool || std::filesystem::exists(underRoot, ignored) ? underRoot.string() : launchPath;
}

util::Result<util::Bytes> PosixProcessLauncher::readOutput(const platform::ProcessRequest& request) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) return util::fileError(errno, "start " + request.launchPath);
    const Descriptor readEnd(ends[0]);
    Descriptor writeEnd(ends[1]);
    const auto child = start(request, programFor(request.launchPath), writeEnd.get());
    if (!child) return child.error();
    writeEnd.close();

    auto output = readToEnd(readEnd.get(), kLargestOutput);
    if (const int* code = std::get_if<int>(&output)) {
        ::kill(*child, SIGKILL);
        children_.watch(*child, {});
        return util::fileError(*code, "read the output of " + request.launchPath);
    }
    children_.watch(*child, {});
    return std::get<util::Bytes>(std::move(output));
}

util::Result<void> PosixProcessLauncher::launch(const platform::ProcessRequest& request, Termination onTermination) {
    const auto child = start(request, programFor(request.launchPath), std::nullopt);
    if (!child) return child.error();
    children_.watch(*child, std::move(onTermination));
    return {};
}

}  // namespace halvane::linux
