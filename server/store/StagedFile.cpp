#include "server/store/StagedFile.h"

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

StagedFile::StagedFile(std::filesystem::path file, std::string_view content)
    : file_(std::move(file)), neighbour_(file_.string() + "." + Random::hex(8) + ".new") {
    const int descriptor = ::open(neighbour_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (descriptor < 0) fail(errno, file_);
    const int problem = writeAll(descriptor, content);
    ::close(descriptor);
    if (problem == 0) return;
    ::unlink(neighbour_.c_str());
    fail(problem, file_);
}

// After a rename there is nothing left of that name.
StagedFile::~StagedFile() { ::unlink(neighbour_.c_str()); }

bool StagedFile::take() {
    // Unlike a rename, a link never replaces what another process was quicker to write.
    if (::link(neighbour_.c_str(), file_.c_str()) == 0) return true;
    if (errno != EEXIST) fail(errno, file_);
    return false;
}

void StagedFile::replace(const std::filesystem::path& target) {
    if (::rename(neighbour_.c_str(), target.c_str()) != 0) fail(errno, target);
}

}  // namespace halvane::server
