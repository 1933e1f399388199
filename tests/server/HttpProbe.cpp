#include "server/HttpProbe.h"

#include "util/Text.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <stdexcept>

namespace halvane::test {

namespace {

/// Stops where the server has closed: it need not read what it has already refused.
void sendAll(int connection, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t sent = ::send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent <= 0) return;
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
}

}  // namespace

HttpProbe::HttpProbe(const std::string& url) : port_(std::stoi(url.substr(url.rfind(':') + 1))) {}

int HttpProbe::connect() const {
    const int connection = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const timeval limit{.tv_sec = 10, .tv_usec = 0};
    ::setsockopt(connection, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof(limit));
    ::setsockopt(connection, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof(limit));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port_));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
        ::close(connection);
        throw std::runtime_error("nobody listens on port " + std::to_string(port_));
    }
    return connection;
}

std::string HttpProbe::exchange(std::string_view bytes, Sender sender) const {
    const int connection = connect();
    sendAll(connection, bytes);
    if (sender == Sender::Ends) ::shutdown(connection, SHUT_WR);
    std::string received;
    char buffer[16384];
    for (ssize_t count = 0; (count = ::recv(connection, buffer, sizeof(buffer), 0)) > 0;)
        received.append(buffer, static_cast<std::size_t>(count));
    ::close(connection);
    return received;
}

void HttpProbe::sendAndLeave(std::string_view bytes) const {
    const int connection = connect();
    sendAll(connection, bytes);
    ::close(connection);
}

HttpProbe::Reply HttpProbe::parse(const std::string& bytes) {
    Reply reply;
    const auto end = bytes.find("\r\n\r\n");
    if (!bytes.starts_with("HTTP/1.1 ") || end == std::string::npos) return reply;
    reply.status = std::stoi(bytes.substr(9, 3));
    for (const auto& line : util::split(bytes.substr(0, end), '\n')) {
        const auto colon = line.find(':');
        if (colon != std::string::npos) reply.headers[util::lowercasedAscii(line.substr(0, colon))] = util::trimmed(line.substr(colon + 1));
    }
    reply.body = bytes.substr(end + 4);
    return reply;
}

HttpProbe::Reply HttpProbe::request(std::string_view method, const std::string& target, const std::string& headers,
                                    const std::string& body) const {
    std::string bytes = std::string(method) + " " + target + " HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: close\r\n" + headers;
    if (method != "GET" && method != "HEAD") bytes += "Content-Length: " + std::to_string(body.size()) + "\r\n";
    return parse(exchange(bytes + "\r\n" + body));
}

HttpProbe::Reply HttpProbe::postJson(const std::string& target, const std::string& body, const std::string& token) const {
    return request("POST", target, "Content-Type: application/json; charset=utf-8\r\ntoken-id: " + token + "\r\n", body);
}

HttpProbe::Reply HttpProbe::get(const std::string& target, const std::string& token) const {
    return request("GET", target, "token-id: " + token + "\r\n");
}

}  // namespace halvane::test
