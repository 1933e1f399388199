#include "linux/http/DownloadFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <system_error>
#include <utility>

namespace halvane::linux_http {

namespace {

int makeDirectories(const std::filesystem::path& directory) {
    if (directory.empty()) return 0;
    std::error_code ignored;
    if (std::filesystem::is_directory(directory, ignored)) return 0;
    if (directory.has_parent_path() && directory.parent_path() != directory) {
        if (const int failure = makeDirectories(directory.parent_path()); failure != 0) return failure;
    }
    return ::mkdir(directory.c_str(), S_IRWXU) == 0 || errno == EEXIST ? 0 : errno;
}

}  // namespace

DownloadFile::~DownloadFile() { discard(); }

util::Error DownloadFile::failure(int errnoValue) const {
    return util::urlError(util::UrlError::CannotWriteFile, "The download could not be written to " + destination_.string() + ": " +
                                                               std::generic_category().message(errnoValue) + ".");
}

util::Result<void> DownloadFile::open(std::filesystem::path destination) {
    discard();
    destination_ = std::move(destination);
    if (!destination_.has_filename()) return failure(destination_.empty() ? ENOENT : EISDIR);
    std::error_code ignored;
    if (std::filesystem::is_directory(destination_, ignored)) return failure(EISDIR);
    if (const int error = makeDirectories(destination_.parent_path()); error != 0) return failure(error);
    // A name of its own: the destination's might be as long as a name can be already.
    neighbour_ = (destination_.parent_path() / ".halvane-download-XXXXXX").string();
    descriptor_ = ::mkostemp(neighbour_.data(), O_CLOEXEC);
    if (descriptor_ < 0) return failure(errno);
    return {};
}

util::Result<void> DownloadFile::write(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor_, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return failure(errno);
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return {};
}

util::Result<void> DownloadFile::commit() {
    const int closed = ::close(std::exchange(descriptor_, -1));
    if (closed == 0 && std::rename(neighbour_.c_str(), destination_.c_str()) == 0) return {};
    const int error = errno;
    ::unlink(neighbour_.c_str());
    return failure(error);
}

void DownloadFile::discard() {
    if (descriptor_ < 0) return;
    ::close(std::exchange(descriptor_, -1));
    ::unlink(neighbour_.c_str());
}

}  // namespace halvane::linux_http
