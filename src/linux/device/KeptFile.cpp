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
    // There is no size to ask for. Room for a little more than last time, and mostly two calls read it all.
    constexpr std::size_t kMore = 4096;
    std::size_t filled = 0;
    bytes.resize(usualSize_ + kMore);
    while (true) {
        if (bytes.size() - filled < kMore / 2) bytes.resize(bytes.size() + kMore);
        const ssize_t count = ::pread(descriptor_.get(), bytes.data() + filled, bytes.size() - filled, static_cast<off_t>(filled));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        if (count == 0) break;
        filled += static_cast<std::size_t>(count);
        if (filled > SystemFiles::kLongestText) return false;
    }
    bytes.resize(filled);
    return true;
}

}  // namespace halvane::linux
