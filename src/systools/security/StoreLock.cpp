#include "systools/security/StoreLock.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <thread>

namespace halvane::systools {

util::Result<StoreLock> StoreLock::take(const std::filesystem::path& file, std::chrono::milliseconds longest) {
    linux::Descriptor descriptor(::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!descriptor) return util::fileError(errno, "open " + file.string());
    const auto end = std::chrono::steady_clock::now() + longest;
    // A blocking call would know no end.
    while (::flock(descriptor.get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR) return util::fileError(errno, "lock " + file.string());
        if (std::chrono::steady_clock::now() >= end)
            return util::serviceError("another program is changing " + file.parent_path().string());
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return StoreLock(std::move(descriptor));
}

}  // namespace halvane::systools
