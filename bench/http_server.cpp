#include "http_server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/epoll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <string_view>
#include <unordered_map>

namespace halvane::bench {

namespace {

/// Bytes of the first whole request, 0 while more is to come. Our contestants all write lengths alike.
std::size_t requestLength(const std::string& bytes) {
    const auto end = bytes.find("\r\n\r\n");
    if (end == std::string::npos) return 0;
    constexpr std::string_view kLength = "\r\nContent-Length: ";
    const auto length = bytes.find(kLength);
    const std::size_t body = length < end ? static_cast<std::size_t>(std::atol(bytes.c_str() + length + kLength.size())) : 0;
    return bytes.size() >= end + 4 + body ? end + 4 + body : 0;
}

[[noreturn]] void serve(int listener) {
    const std::string body = R"({"code":0,"message":"OK","data":{"user_name":"chen.xiao","token":"0123456789abcdef"}})";
    const std::string reply =
        "HTTP/1.1 200 OK\r\nDate: Mon, 01 Jan 2024 00:00:00 GMT\r\nServer: bench\r\n"
        "Content-Type: application/json; charset=utf-8\r\nContent-Length: " +
        std::to_string(body.size()) + "\r\n\r\n" + body;
    const int poller = epoll_create1(EPOLL_CLOEXEC);
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.fd = listener;
    epoll_ctl(poller, EPOLL_CTL_ADD, listener, &event);
    std::unordered_map<int, std::string> unread;
    for (;;) {
        epoll_event ready[16];
        const int count = epoll_wait(poller, ready, 16, -1);
        for (int i = 0; i < count; ++i) {
            const int descriptor = ready[i].data.fd;
            if (descriptor == listener) {
                event.data.fd = ::accept(listener, nullptr, nullptr);
                const int now = 1;
                ::setsockopt(event.data.fd, IPPROTO_TCP, TCP_NODELAY, &now, sizeof now);
                epoll_ctl(poller, EPOLL_CTL_ADD, event.data.fd, &event);
                continue;
            }
            char buffer[16384];
            const ssize_t received = ::recv(descriptor, buffer, sizeof buffer, 0);
            if (received <= 0) {
                unread.erase(descriptor);
                ::close(descriptor);
                continue;
            }
            std::string& bytes = unread[descriptor].append(buffer, static_cast<std::size_t>(received));
            for (std::size_t length = requestLength(bytes); length != 0; length = requestLength(bytes)) {
                bytes.erase(0, length);
                if (::send(descriptor, reply.data(), reply.size(), MSG_NOSIGNAL) < 0) break;
            }
        }
    }
}

}  // namespace

HttpServer::HttpServer() {
    const int listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    if (::bind(listener, reinterpret_cast<const sockaddr*>(&address), size) != 0 || ::listen(listener, 64) != 0 ||
        ::getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
        throw std::runtime_error("the bench has no server");
    }
    url_ = "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port)) + "/api/v1/user/info";
    child_ = ::fork();
    if (child_ == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        serve(listener);
    }
    ::close(listener);
}

HttpServer::~HttpServer() {
    ::kill(child_, SIGKILL);
    ::waitpid(child_, nullptr, 0);
}

}  // namespace halvane::bench
