#include "linux/LocalSocket.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <algorithm>
#include <cerrno>
#include <string>

namespace halvane::linux {

namespace {

constexpr int kWaitingCallers = 16;

/// An address for `path`. Addresses hold about a hundred bytes; a longer path goes through the
/// descriptor of its directory.
class Address {
public:
    explicit Address(const std::filesystem::path& path) {
        std::string text = path.string();
        if (text.size() >= sizeof address_.sun_path) {
            directory_ = Descriptor(::open(path.parent_path().c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
            text = "/proc/self/fd/" + std::to_string(directory_.get()) + "/" + path.filename().string();
        }
        address_.sun_family = AF_UNIX;
        text.copy(address_.sun_path, sizeof address_.sun_path - 1);
    }
    [[nodiscard]] const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&address_); }
    static constexpr socklen_t kSize = sizeof(sockaddr_un);

private:
    Descriptor directory_;
    sockaddr_un address_{};
};

Descriptor openSocket() { return Descriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)); }

bool otherSideIsThisUser(const Descriptor& socket) {
    ucred credentials{};
    socklen_t size = sizeof credentials;
    return ::getsockopt(socket.get(), SOL_SOCKET, SO_PEERCRED, &credentials, &size) == 0 && credentials.uid == ::geteuid();
}

bool waitFor(int descriptor, short events, LocalSocket::Deadline deadline) {
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now()).count();
        if (left <= 0) return false;
        pollfd wait{descriptor, events, 0};
        const int ready = ::poll(&wait, 1, static_cast<int>(std::min<std::int64_t>(left, 60'000)));
        if (ready > 0) return true;
        if (ready < 0 && errno != EINTR) return false;
    }
}

}  // namespace

LocalSocket LocalSocket::listenAt(const std::filesystem::path& path) {
    Descriptor socket = openSocket();
    const Address address(path);
    ::unlink(path.c_str());
    // The mode that the file is born with: nobody else gets in, not even for a moment.
    if (!socket || ::fchmod(socket.get(), 0600) != 0 || ::bind(socket.get(), address.get(), Address::kSize) != 0 ||
        ::listen(socket.get(), kWaitingCallers) != 0) {
        return {};
    }
    return LocalSocket(std::move(socket));
}

LocalSocket LocalSocket::connectTo(const std::filesystem::path& path) {
    Descriptor socket = openSocket();
    const Address address(path);
    if (!socket || ::connect(socket.get(), address.get(), Address::kSize) != 0 || !otherSideIsThisUser(socket)) return {};
    return LocalSocket(std::move(socket));
}

LocalSocket LocalSocket::accept() const {
    Descriptor socket(::accept4(socket_.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    if (!socket || !otherSideIsThisUser(socket)) return {};
    return LocalSocket(std::move(socket));
}

bool LocalSocket::send(std::string_view bytes, Deadline deadline) const {
    while (!bytes.empty()) {
        const auto sent = ::send(socket_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent > 0) {
            bytes.remove_prefix(static_cast<std::size_t>(sent));
        } else if (errno != EINTR && (errno != EAGAIN || !waitFor(socket_.get(), POLLOUT, deadline))) {
            return false;
        }
    }
    return true;
}

std::optional<util::Bytes> LocalSocket::receive(std::size_t size, Deadline deadline) const {
    util::Bytes bytes(size, '\0');
    for (std::size_t filled = 0; filled < size;) {
        const auto got = ::recv(socket_.get(), bytes.data() + filled, size - filled, 0);
        if (got > 0) {
            filled += static_cast<std::size_t>(got);
        } else if (got == 0 || (errno != EINTR && (errno != EAGAIN || !waitFor(socket_.get(), POLLIN, deadline)))) {
            return std::nullopt;
        }
    }
    return bytes;
}

}  // namespace halvane::linux
