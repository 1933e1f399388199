#include "support/LoopbackServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>
#include <algorithm>
#include <array>
#include <cctype>
#include <stdexcept>
#include <utility>

namespace halvane::test {

namespace {

class PlainChannel final : public LoopbackChannel {
public:
    explicit PlainChannel(int descriptor) : descriptor_(descriptor) {}
    std::string read() override {
        std::array<char, 65536> buffer{};
        const ssize_t count = ::recv(descriptor_, buffer.data(), buffer.size(), 0);
        return count > 0 ? std::string(buffer.data(), static_cast<std::size_t>(count)) : std::string();
    }
    bool write(std::string_view bytes) override {
        while (!bytes.empty()) {
            const ssize_t count = ::send(descriptor_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
            if (count <= 0) return false;
            bytes.remove_prefix(static_cast<std::size_t>(count));
        }
        return true;
    }
    void close() override { ::shutdown(descriptor_, SHUT_RDWR); }

private:
    int descriptor_;
};

std::string lowercased(std::string text) {
    std::ranges::transform(text, text.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

/// Length of the first whole request in `bytes`, or npos while more is to come.
std::size_t requestLength(const std::string& bytes) {
    const auto end = bytes.find("\r\n\r\n");
    if (end == std::string::npos) return end;
    const std::string head = lowercased(bytes.substr(0, end + 2));
    const std::size_t body = end + 4;
    if (head.find("\r\ntransfer-encoding: chunked\r\n") != std::string::npos) {
        const auto last = bytes.compare(body, 5, "0\r\n\r\n") == 0 ? body - 2 : bytes.find("\r\n0\r\n\r\n", body);
        return last == std::string::npos ? last : last + 7;
    }
    constexpr std::string_view kLength = "\r\ncontent-length: ";
    const auto length = head.find(kLength);
    const std::size_t total = body + (length == std::string::npos ? 0 : std::stoul(head.substr(length + kLength.size())));
    return bytes.size() < total ? std::string::npos : total;
}

}  // namespace

LoopbackConnection::LoopbackConnection(LoopbackServer& server, int descriptor, int number)
    : server_(server), descriptor_(descriptor), number_(number) {}

std::string LoopbackConnection::readRequest() {
    std::size_t length = requestLength(unread_);
    while (length == std::string::npos) {
        const std::string more = channel->read();
        if (more.empty()) break;
        unread_ += more;
        length = requestLength(unread_);
    }
    std::string request = unread_.substr(0, length);
    unread_.erase(0, length);
    if (!request.empty()) server_.record(request);
    return length == std::string::npos ? std::string() : request;
}

bool LoopbackConnection::send(std::string_view bytes) { return channel->write(bytes); }

bool LoopbackConnection::trickle(std::string_view bytes, std::chrono::milliseconds duration) {
    for (const char& byte : bytes) {
        if (!channel->write({&byte, 1})) return false;
        if (duration.count() > 0) pause(duration);
    }
    return true;
}

void LoopbackConnection::stall() {
    while (!channel->read().empty()) continue;
}

void LoopbackConnection::pause(std::chrono::milliseconds duration) {
    std::unique_lock lock(server_.mutex_);
    server_.stopping_.wait_for(lock, duration, [this] { return server_.stopped_; });
}

void LoopbackConnection::reset() {
    const linger hard{1, 0};
    ::setsockopt(descriptor_, SOL_SOCKET, SO_LINGER, &hard, sizeof hard);
}

LoopbackServer::LoopbackServer(Script script, ChannelMaker maker) : script_(std::move(script)), maker_(std::move(maker)) {
    listener_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    if (::bind(listener_, reinterpret_cast<const sockaddr*>(&address), size) != 0 || ::listen(listener_, 64) != 0 ||
        ::getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
        throw std::runtime_error("no server on 127.0.0.1");
    }
    port_ = ntohs(address.sin_port);
    acceptor_ = std::thread([this] { accept(); });
}

LoopbackServer::~LoopbackServer() {
    {
        const std::lock_guard lock(mutex_);
        stopped_ = true;
        for (const int descriptor : descriptors_) ::shutdown(descriptor, SHUT_RDWR);
    }
    stopping_.notify_all();
    ::shutdown(listener_, SHUT_RDWR);
    acceptor_.join();
    ::close(listener_);
    for (auto& thread : threads_) thread.join();
}

void LoopbackServer::accept() {
    for (;;) {
        const int descriptor = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        if (descriptor < 0) return;
        const int now = 1;
        ::setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &now, sizeof now);
        const std::lock_guard lock(mutex_);
        if (stopped_) {
            ::close(descriptor);
            return;
        }
        descriptors_.push_back(descriptor);
        threads_.emplace_back([this, descriptor, number = ++connections_] { serve(descriptor, number); });
    }
}

void LoopbackServer::serve(int descriptor, int number) {
    LoopbackConnection connection(*this, descriptor, number);
    connection.channel = maker_ ? maker_(descriptor) : std::make_unique<PlainChannel>(descriptor);
    if (connection.channel) {
        script_(connection);
        linger now{};
        socklen_t size = sizeof now;
        ::getsockopt(descriptor, SOL_SOCKET, SO_LINGER, &now, &size);
        if (now.l_onoff == 0) connection.channel->close();
        connection.channel.reset();
    }
    const std::lock_guard lock(mutex_);
    std::erase(descriptors_, descriptor);
    ::close(descriptor);
}

void LoopbackServer::record(const std::string& request) {
    const std::lock_guard lock(mutex_);
    requests_.push_back(request);
}

std::vector<std::string> LoopbackServer::requests() const {
    const std::lock_guard lock(mutex_);
    return requests_;
}

std::string LoopbackServer::url(const std::string& path) const {
    return (maker_ ? "https" : "http") + std::string("://127.0.0.1:") + std::to_string(port_) + path;
}

LoopbackServer::Script LoopbackServer::replying(std::string reply) {
    return answering([reply = std::move(reply)](const std::string&) { return reply; });
}

LoopbackServer::Script LoopbackServer::answering(std::function<std::string(const std::string&)> answer) {
    return [answer = std::move(answer)](LoopbackConnection& connection) {
        for (std::string request = connection.readRequest(); !request.empty(); request = connection.readRequest()) {
            const std::string reply = answer(request);
            if (reply.empty() || !connection.send(reply)) return;
        }
    };
}

std::string refusingUrl(const std::string& path) {
    // A port that was given out a moment ago, and that nobody listens on any more.
    return LoopbackServer([](LoopbackConnection&) {}).url(path);
}

std::string okReply(std::string_view body, std::string_view moreHeaders) {
    return "HTTP/1.1 200 OK\r\n" + std::string(moreHeaders) + "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" +
           std::string(body);
}

}  // namespace halvane::test
