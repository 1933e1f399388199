#include "linux/http/FileBody.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <utility>

namespace halvane::linux_http {

util::Result<std::shared_ptr<platform::HttpBodyStream>> FileBody::of(const std::filesystem::path& file) {
    struct stat status {};
    if (::stat(file.c_str(), &status) != 0 || ::access(file.c_str(), R_OK) != 0) return util::fileError(errno, "read " + file.string());
    if (!S_ISREG(status.st_mode)) return util::fileError(S_ISDIR(status.st_mode) ? EISDIR : EINVAL, "read " + file.string());
    return std::shared_ptr<platform::HttpBodyStream>(std::make_shared<FileBody>(file, static_cast<std::uint64_t>(status.st_size)));
}

FileBody::~FileBody() { close(); }

void FileBody::close() {
    if (descriptor_ >= 0) ::close(std::exchange(descriptor_, -1));
}

std::optional<std::size_t> FileBody::read(char* buffer, std::size_t capacity) {
    capacity = static_cast<std::size_t>(std::min<std::uint64_t>(capacity, length_ - position_));
    if (capacity == 0) return 0;
    // Never waits: what is no regular file any more is not worth a stopped network.
    if (descriptor_ < 0) descriptor_ = ::open(file_.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor_ < 0) return std::nullopt;
    ssize_t count = -1;
    do {
        count = ::pread(descriptor_, buffer, capacity, static_cast<off_t>(position_));
    } while (count < 0 && errno == EINTR);
    if (count <= 0) return std::nullopt;
    position_ += static_cast<std::uint64_t>(count);
    if (position_ == length_) close();
    return static_cast<std::size_t>(count);
}

bool FileBody::rewind() {
    position_ = 0;
    return true;
}

}  // namespace halvane::linux_http
