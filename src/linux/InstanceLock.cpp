#include "linux/InstanceLock.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <cstdio>

namespace halvane::linux {

namespace {

bool isSameFile(const struct stat& one, const struct stat& other) { return one.st_dev == other.st_dev && one.st_ino == other.st_ino; }

bool isAt(const std::filesystem::path& path, const struct stat& file) {
    struct stat there {};
    return ::lstat(path.c_str(), &there) == 0 && isSameFile(there, file);
}

Descriptor openLockFile(const std::filesystem::path& path) {
    return Descriptor(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
}

}  // namespace

InstanceLock::Outcome InstanceLock::tryTake() {
    const auto path = directory_ / "instance.lock";
    // Another round only when the file was replaced between opening and locking it.
    for (int round = 0; round < 10; ++round) {
        Descriptor file = openLockFile(path);
        struct stat status {};
        if (!file || ::fstat(file.get(), &status) != 0) return Outcome::Impossible;
        if (::flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
            if (errno != EWOULDBLOCK) return Outcome::Impossible;
            other_ = status;
            return Outcome::HeldByOther;
        }
        if (isAt(path, status)) {
            held_ = std::move(file);
            return Outcome::Taken;
        }
    }
    return Outcome::Impossible;
}

bool InstanceLock::replaceOther() {
    // One at a time: two that gave up on the same process must not both take its place.
    const Descriptor replacing = openLockFile(directory_ / "instance.replacing");
    if (!replacing || ::flock(replacing.get(), LOCK_EX | LOCK_NB) != 0) return false;
    const auto path = directory_ / "instance.lock";
    if (!isAt(path, other_)) return false;

    const auto next = directory_ / "instance.next";
    ::unlink(next.c_str());
    Descriptor file(::open(next.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!file || ::flock(file.get(), LOCK_EX | LOCK_NB) != 0 || std::rename(next.c_str(), path.c_str()) != 0) return false;
    held_ = std::move(file);
    return true;
}

}  // namespace halvane::linux
