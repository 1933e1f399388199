#include "linux/device/KeptFile.h"

#include "linux/device/SystemFiles.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace halvane::linux {

std::optional<std::string> KeptFile::text() const {
    const std::lock_guard lock(mutex_);
    if (!descriptor_) descriptor_ = Descriptor(::open(path_.c_str(), O_RDONLY | O_CLOEXEC));
    std::string bytes;
    if (!descriptor_ || !readInto(bytes)) {
        descriptor_.close();
        return std::nullopt;
    }
    usualSize_ = bytes.size();
    return bytes;
}

bool KeptFile::readInto(std::string& bytes) const {
    // There is no size to ask for. With room for a little more than last time, one call mostly reads it all: the
    // kernel fills what it is given, or has come to the end. A text in pieces would be of several moments, so what
    // does not fit is read anew.
    constexpr std::size_t kMore = 1024;
    bytes.resize(usualSize_ + kMore);
    while (true) {
        const ssize_t count = ::pread(descriptor_.get(), bytes.data(), bytes.size(), 0);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0 || static_cast<std::size_t>(count) > SystemFiles::kLongestText) return false;
        if (static_cast<std::size_t>(count) < bytes.size()) {
            bytes.resize(static_cast<std::size_t>(count));
            return true;
        }
        bytes.resize(2 * bytes.size());
    }
}

}  // namespace halvane::linux
