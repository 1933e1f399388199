#include "linux/Pipe.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace halvane::linux {

namespace {

/// Waits until there is something to read.
bool mustStop(int descriptor, int stop) {
    pollfd waits[] = {{descriptor, POLLIN, 0}, {stop, POLLIN, 0}};
    while (::poll(waits, 2, -1) < 0 && errno == EINTR) {
    }
    return waits[1].revents != 0;
}

}  // namespace

util::Result<Pipe> Pipe::open(const std::string& subject) {
    constexpr int kLowest = 10;
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) return util::fileError(errno, subject);
    const Descriptor low[] = {Descriptor(ends[0]), Descriptor(ends[1])};
    Pipe pipe;
    pipe.readEnd = Descriptor(::fcntl(ends[0], F_DUPFD_CLOEXEC, kLowest));
    pipe.writeEnd = Descriptor(::fcntl(ends[1], F_DUPFD_CLOEXEC, kLowest));
    if (!pipe.readEnd || !pipe.writeEnd) return util::fileError(errno, subject);
    return pipe;
}

util::Result<util::Bytes> Pipe::readToEnd(int descriptor, const std::string& subject, int stop) {
    util::Bytes bytes;
    for (std::size_t filled = 0;;) {
        // Growing by halves keeps the copying of large outputs linear.
        if (bytes.size() == filled) bytes.resize(filled + std::max<std::size_t>(4096, filled / 2));
        if (stop >= 0 && mustStop(descriptor, stop)) return util::fileError(ECANCELED, subject);
        const auto got = ::read(descriptor, bytes.data() + filled, bytes.size() - filled);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return util::fileError(errno, subject);
        filled += static_cast<std::size_t>(got);
        if (filled > kLargestOutput) return util::fileError(EFBIG, subject);
        if (got == 0) {
            bytes.resize(filled);
            return bytes;
        }
    }
}

}  // namespace halvane::linux
