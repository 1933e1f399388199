#include "SilentServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>
#include <stdexcept>

namespace halvane::bench {

SilentServer::SilentServer() : listener_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const plain = reinterpret_cast<sockaddr*>(&address);
    if (::bind(listener_, plain, size) != 0 || ::listen(listener_, 64) != 0 || ::getsockname(listener_, plain, &size) != 0) {
        ::close(listener_);
        throw std::runtime_error("no port is free");
    }
    port_ = ntohs(address.sin_port);
}

SilentServer::~SilentServer() { ::close(listener_); }

}  // namespace halvane::bench
