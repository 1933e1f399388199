#include "linux/http/SocketTable.h"

#include <arpa/inet.h>
#include <linux/tcp.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace halvane::linux_http {

namespace {

std::optional<long> localPortOf(int descriptor) {
    sockaddr_storage address{};
    socklen_t size = sizeof address;
    if (getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &size) != 0) return std::nullopt;
    if (address.ss_family == AF_INET) return ntohs(reinterpret_cast<const sockaddr_in*>(&address)->sin_port);
    if (address.ss_family == AF_INET6) return ntohs(reinterpret_cast<const sockaddr_in6*>(&address)->sin6_port);
    return std::nullopt;
}

}  // namespace

std::optional<SocketMovement> SocketTable::movement(long localPort) const {
    for (const int descriptor : descriptors_) {
        if (localPort == 0 || localPortOf(descriptor) != localPort) continue;
        tcp_info info{};
        socklen_t size = sizeof info;
        if (getsockopt(descriptor, IPPROTO_TCP, TCP_INFO, &info, &size) != 0) return std::nullopt;
        return SocketMovement{std::chrono::milliseconds(info.tcpi_last_data_recv), std::chrono::milliseconds(info.tcpi_last_ack_recv),
                              info.tcpi_bytes_acked, info.tcpi_unacked != 0 || info.tcpi_notsent_bytes != 0};
    }
    return std::nullopt;
}

}  // namespace halvane::linux_http
