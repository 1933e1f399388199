#include "server/updates/PackageFile.h"

#include "util/Text.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <map>
#include <string_view>
#include <vector>

namespace halvane::server {

namespace {

/// Many times the length of three fields that name a file.
constexpr std::size_t kMostOutput = 16 * 1024;

/// What comes out of the pipe, up to a byte more than the most.
std::string drained(int pipe) {
    std::string output;
    char buffer[4096];
    while (output.size() <= kMostOutput) {
        const ssize_t count = ::read(pipe, buffer, sizeof(buffer));
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) break;
        output.append(buffer, static_cast<std::size_t>(count));
    }
    return output;
}

/// The status that a child ended with.
int ended(pid_t child) {
    int status = -1;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return status;
}

/// What dpkg-deb prints of the package's fields.
util::Result<std::string> fieldsIn(const std::filesystem::path& file) {
    int pipe[2];
    if (::pipe2(pipe, O_CLOEXEC) != 0) return util::fileError(errno, "cannot run dpkg-deb");
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    ::posix_spawn_file_actions_adddup2(&actions, pipe[1], STDOUT_FILENO);
    ::posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    // Absolute: a name that begins with a dash would be an option.
    std::vector<std::string> words = {"dpkg-deb", "--field", std::filesystem::absolute(file), "Package", "Version", "Architecture"};
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (auto& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    pid_t child = -1;
    const int problem = ::posix_spawnp(&child, "dpkg-deb", &actions, nullptr, arguments.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    ::close(pipe[1]);
    std::string output = problem == 0 ? drained(pipe[0]) : std::string();
    // A child that still writes ends of it.
    ::close(pipe[0]);
    if (problem != 0) return util::fileError(problem, "cannot run dpkg-deb, which reads packages");
    const int status = ended(child);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) return util::dataError("dpkg-deb finds no proper Debian package in it");
    return output;
}

}  // namespace

util::Result<PackageName> PackageFile::nameIn(const std::filesystem::path& file) {
    const auto output = fieldsIn(file);
    if (!output) return output.error();
    std::map<std::string, std::string> fields;
    for (const auto& line : util::split(util::trimmed(*output), '\n')) {
        const auto colon = line.find(": ");
        // What goes over several lines is none of the three: it then lacks its colon, or makes a fourth.
        fields[line.substr(0, colon)] = colon == std::string::npos ? "" : line.substr(colon + 2);
    }
    if (fields.size() != 3) return util::dataError("its fields Package, Version and Architecture are not one line each");
    auto name = PackageName::parse(fields["Package"], fields["Version"], fields["Architecture"]);
    if (!name) return util::dataError("its name, version or architecture is none by Debian's policy");
    return std::move(*name);
}

}  // namespace halvane::server
