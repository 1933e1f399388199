#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <vector>

namespace halvane::linux_http {

/// When bytes last moved on a socket, as the kernel saw it.
struct SocketMovement {
    std::chrono::milliseconds sinceReceived{0};
    std::chrono::milliseconds sinceAcknowledged{0};
    std::uint64_t bytesAcknowledged = 0;
    bool hasUnacknowledged = false;  ///< bytes of ours that the peer has not taken yet
};

/// The open sockets of one session, found by local port. Asked only when a transfer seems idle: half a header
/// line, or an upload that drains from the kernel's buffer, moves without any library noticing. Network thread.
class SocketTable {
public:
    void add(int descriptor) { descriptors_.push_back(descriptor); }
    void remove(int descriptor) { std::erase(descriptors_, descriptor); }
    [[nodiscard]] std::optional<SocketMovement> movement(long localPort) const;

private:
    std::vector<int> descriptors_;
};

}  // namespace halvane::linux_http
