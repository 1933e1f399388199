#include "linux/PosixFileStore.h"

#include "linux/base/Descriptor.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <string>
#include <string_view>

namespace halvane::linux {

namespace {

/// The system's calls would silently stop at a NUL and act on another file.
bool isUsable(const std::filesystem::path& path) { return !path.empty() && path.native().find('\0') == std::string::npos; }

util::Error failure(int code, const char* verb, const std::filesystem::path& path) {
    return util::fileError(code, std::string(verb) + " " + path.string());
}

/// 0, or the errno of what failed. `temporary` is left for the caller to remove.
int fill(const Descriptor& file, std::string_view bytes, const std::string& temporary, const std::filesystem::path& path) {
    if (const int code = file.writeAll(bytes); code != 0) return code;
    if (::fsync(file.get()) != 0) return errno;
    return std::rename(temporary.c_str(), path.c_str()) == 0 ? 0 : errno;
}

}  // namespace

util::Result<util::Bytes> PosixFileStore::read(const std::filesystem::path& path) const {
    if (!isUsable(path)) return failure(EINVAL, "open", path);
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!file) return failure(errno, "open", path);
    struct stat status {};
    if (::fstat(file.get(), &status) != 0) return failure(errno, "read", path);
    if (S_ISDIR(status.st_mode)) return failure(EISDIR, "read", path);
    if (!S_ISREG(status.st_mode)) return failure(EINVAL, "read", path);

    util::Bytes bytes;
    // One byte more than the size tells the end of the file in the first read.
    std::size_t room = std::min(static_cast<std::size_t>(std::max<off_t>(status.st_size, 0)), kLargestFile) + 1;
    for (std::size_t filled = 0;;) {
        bytes.resize(filled + room);
        const auto got = ::read(file.get(), bytes.data() + filled, room);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return failure(errno, "read", path);
        filled += static_cast<std::size_t>(got);
        if (filled > kLargestFile) return failure(EFBIG, "read", path);
        if (got == 0) {
            bytes.resize(filled);
            return bytes;
        }
        room = std::size_t{64} << 10;
    }
}

util::Result<void> PosixFileStore::write(const std::filesystem::path& path, const util::Bytes& bytes) {
    if (!isUsable(path)) return failure(EINVAL, "write", path);
    if (!path.has_filename()) return failure(EISDIR, "write", path);
    const auto directory = path.has_parent_path() ? path.parent_path() : std::filesystem::path(".");
    // A short name of its own: the file's own name may already be as long as names can be.
    std::string temporary = (directory / ".halvane-XXXXXX").string();
    const Descriptor file(::mkostemp(temporary.data(), O_CLOEXEC));
    if (!file) return failure(errno, "write", path);
    if (const int code = fill(file, bytes, temporary, path); code != 0) {
        ::unlink(temporary.c_str());
        return failure(code, "write", path);
    }
    // The file stands; that its directory entry is on the disk as well is best effort, not every file system can.
    const Descriptor parent(::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (parent) ::fsync(parent.get());
    return {};
}

util::Result<void> PosixFileStore::makeDirectory(const std::filesystem::path& path) {
    if (!isUsable(path)) return failure(EINVAL, "make directory", path);
    std::filesystem::path reached;
    for (const auto& component : path) {
        reached /= component;
        if (::mkdir(reached.c_str(), 0700) == 0) continue;
        const int code = errno;
        // Existing directories answer in several ways, read-only file systems among them.
        std::error_code ignored;
        if (!std::filesystem::is_directory(reached, ignored)) return failure(code, "make directory", path);
    }
    return {};
}

util::Result<void> PosixFileStore::remove(const std::filesystem::path& path) {
    if (!isUsable(path)) return failure(EINVAL, "remove", path);
    if (::unlink(path.c_str()) != 0) return failure(errno, "remove", path);
    return {};
}

util::Result<void> PosixFileStore::removeDirectory(const std::filesystem::path& path) {
    if (!isUsable(path)) return failure(EINVAL, "remove", path);
    std::error_code failed;
    std::filesystem::remove_all(path, failed);
    if (failed) return failure(failed.value(), "remove", path);
    return {};
}

bool PosixFileStore::exists(const std::filesystem::path& path) const {
    std::error_code ignored;
    return isUsable(path) && std::filesystem::exists(path, ignored);
}

}  // namespace halvane::linux
