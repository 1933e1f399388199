#include "server/store/PrivateFile.h"

#include "server/crypto/Random.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <system_error>

namespace halvane::server {

namespace {

[[noreturn]] void fail(int problem, const std::filesystem::path& file) {
    throw std::system_error(problem, std::generic_category(), "cannot write " + file.string());
}

/// 0 or an errno.
int writeAll(int descriptor, std::string_view content) {
    while (!content.empty()) {
        const ssize_t written = ::write(descriptor, content.data(), content.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return errno;
        content.remove_prefix(static_cast<std::size_t>(written));
    }
    return ::fsync(descriptor) == 0 ? 0 : errno;
}

}  // namespace

void PrivateFile::makeDirectory(const std::filesystem::path& directory) {
    if (std::filesystem::is_directory(directory)) return;
    if (std::filesystem::create_directories(directory)) {
        std::filesystem::permissions(directory, std::filesystem::perms::owner_all);
    }
}

PrivateFile::Created PrivateFile::write(const std::filesystem::path& file, std::string_view content) {
    const std::filesystem::path neighbour = file.string() + "." + Random::hex(8) + ".new";
    const int descriptor = ::open(neighbour.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (descriptor < 0) fail(errno, file);
    int problem = writeAll(descriptor, content);
    ::close(descriptor);
    // Unlike a rename, a link never replaces what another process was quicker to write.
    if (problem == 0 && ::link(neighbour.c_str(), file.c_str()) != 0) problem = errno;
    ::unlink(neighbour.c_str());
    if (problem == EEXIST) return Created::AlreadyThere;
    if (problem != 0) fail(problem, file);
    return Created::Yes;
}

}  // namespace halvane::server
