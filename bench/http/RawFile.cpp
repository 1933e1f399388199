#include "RawFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>
#include <system_error>

namespace halvane::bench {

RawFile::RawFile(const std::filesystem::path& path, Use use)
    : descriptor_(::open(path.c_str(), use == Use::Read ? O_RDONLY | O_CLOEXEC : O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600)) {
    if (descriptor_ < 0) throw std::system_error(errno, std::generic_category(), path.string());
}

RawFile::~RawFile() { ::close(descriptor_); }

std::uint64_t RawFile::size() const {
    struct stat status {};
    return ::fstat(descriptor_, &status) == 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
}

std::optional<std::size_t> RawFile::read(char* buffer, std::size_t capacity) {
    const ssize_t count = ::pread(descriptor_, buffer, capacity, position_);
    if (count < 0) return std::nullopt;
    position_ += count;
    return static_cast<std::size_t>(count);
}

bool RawFile::write(const char* data, std::size_t size) {
    while (size > 0) {
        const ssize_t count = ::pwrite(descriptor_, data, size, position_);
        if (count < 0) return false;
        position_ += count;
        data += count;
        size -= static_cast<std::size_t>(count);
    }
    return true;
}

}  // namespace halvane::bench
