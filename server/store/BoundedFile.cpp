#include "server/store/BoundedFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

namespace halvane::server {

namespace {

util::Result<util::Bytes> readFrom(int descriptor, const std::string& name, std::size_t most) {
    struct stat status {};
    if (::fstat(descriptor, &status) != 0) return util::fileError(errno, "cannot read " + name);
    if (!S_ISREG(status.st_mode)) return util::dataError("cannot read " + name + ": it is no file");
    if (static_cast<std::size_t>(status.st_size) > most)
        return util::dataError(name + " is larger than " + std::to_string(most) + " bytes");
    // A byte more than it has now: it may grow while it is read, and the end shows only beyond it.
    util::Bytes bytes(static_cast<std::size_t>(status.st_size) + 1, '\0');
    std::size_t filled = 0;
    while (filled < bytes.size()) {
        const ssize_t count = ::read(descriptor, bytes.data() + filled, bytes.size() - filled);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return util::fileError(errno, "cannot read " + name);
        if (count == 0) break;
        filled += static_cast<std::size_t>(count);
    }
    if (filled == bytes.size()) return util::dataError("cannot read " + name + ": it is being written");
    bytes.resize(filled);
    return bytes;
}

}  // namespace

util::Result<util::Bytes> BoundedFile::read(const std::filesystem::path& file, std::size_t most) {
    // Opening a pipe would wait for somebody to write into it.
    const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) return util::fileError(errno, "cannot read " + file.string());
    auto bytes = readFrom(descriptor, file.string(), most);
    ::close(descriptor);
    return bytes;
}

}  // namespace halvane::server
