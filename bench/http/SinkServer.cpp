#include "SinkServer.h"

#include <sys/socket.h>
#include <unistd.h>
#include <cstdlib>
#include <string_view>
#include <vector>

namespace halvane::bench {

namespace {

constexpr std::string_view kReply = "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: 2\r\n\r\n{}";

/// Whether a whole request has come; its body is forgotten as it does.
bool takeRequest(int connection, std::vector<char>& buffer) {
    std::string head;
    std::size_t end = std::string::npos;
    while (end == std::string::npos) {
        const ssize_t count = ::recv(connection, buffer.data(), buffer.size(), 0);
        if (count <= 0) return false;
        head.append(buffer.data(), static_cast<std::size_t>(count));
        end = head.find("\r\n\r\n");
    }
    constexpr std::string_view kLength = "\r\nContent-Length: ";
    const auto length = head.find(kLength);
    if (length > end) return false;
    const auto announced = std::strtoull(head.c_str() + length + kLength.size(), nullptr, 10);
    for (unsigned long long taken = head.size() - end - 4; taken < announced;) {
        const ssize_t count = ::recv(connection, buffer.data(), buffer.size(), 0);
        if (count <= 0) return false;
        taken += static_cast<unsigned long long>(count);
    }
    return true;
}

}  // namespace

SinkServer::SinkServer() : thread_([this] { serve(); }) {}

SinkServer::~SinkServer() {
    ::shutdown(server_.descriptor(), SHUT_RDWR);
    thread_.join();
}

void SinkServer::serve() const {
    std::vector<char> buffer(1UL << 20);
    for (int connection = 0; (connection = ::accept(server_.descriptor(), nullptr, nullptr)) >= 0; ::close(connection)) {
        while (takeRequest(connection, buffer)) {
            if (::send(connection, kReply.data(), kReply.size(), MSG_NOSIGNAL) < 0) break;
        }
    }
}

}  // namespace halvane::bench
