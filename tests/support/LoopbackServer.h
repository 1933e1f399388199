#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace halvane::test {

/// One accepted connection, in plain text or over TLS. Used by the script on the connection's thread.
class LoopbackChannel {
public:
    virtual ~LoopbackChannel() = default;
    /// Bytes that are there, at least one; empty when the peer has closed or the server stops.
    virtual std::string read() = 0;
    /// False when the peer takes no more.
    virtual bool write(std::string_view bytes) = 0;
    /// Says good-bye as the protocol wants it, then closes.
    virtual void close() = 0;
};

/// What a script does with a connection.
class LoopbackConnection {
public:
    LoopbackConnection(class LoopbackServer& server, int descriptor, int number);

    /// The next request with its body, exactly as it came; empty when there is none any more.
    std::string readRequest();
    bool send(std::string_view bytes);
    /// Byte by byte, each in a segment of its own as far as the system lets it, `pause` between them.
    bool trickle(std::string_view bytes, std::chrono::milliseconds pause = {});
    /// Keeps silent until the peer closes or the server stops.
    void stall();
    /// Keeps silent for that time.
    void pause(std::chrono::milliseconds duration);
    /// Closes so that the peer sees a reset.
    void reset();

    [[nodiscard]] int number() const { return number_; }  ///< from 1, in order of acceptance
    [[nodiscard]] int descriptor() const { return descriptor_; }
    std::unique_ptr<LoopbackChannel> channel;

private:
    LoopbackServer& server_;
    int descriptor_;
    int number_;
    std::string unread_;
};

/// A server on 127.0.0.1 that does on each connection, in a thread of its own, what its script says, and
/// records every request. Destroying it ends all of that.
class LoopbackServer {
public:
    using Script = std::function<void(LoopbackConnection&)>;
    /// Makes the channel of an accepted descriptor; null when no connection comes about (a failed handshake).
    using ChannelMaker = std::function<std::unique_ptr<LoopbackChannel>(int descriptor)>;

    explicit LoopbackServer(Script script, ChannelMaker maker = {});
    ~LoopbackServer();
    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;

    /// A script that answers every request on every connection with `reply`.
    static Script replying(std::string reply);
    /// A script that answers by what the request is; an empty answer closes.
    static Script answering(std::function<std::string(const std::string& request)> answer);

    [[nodiscard]] std::string url(const std::string& path = "/") const;
    [[nodiscard]] int port() const { return port_; }
    [[nodiscard]] int connections() const { return connections_; }
    [[nodiscard]] std::vector<std::string> requests() const;

private:
    friend class LoopbackConnection;

    void accept();
    void serve(int descriptor, int number);
    void record(const std::string& request);

    const Script script_;
    const ChannelMaker maker_;
    int listener_ = -1;
    int port_ = 0;
    std::atomic<int> connections_{0};
    mutable std::mutex mutex_;
    std::condition_variable stopping_;
    bool stopped_ = false;
    std::vector<std::string> requests_;
    std::vector<int> descriptors_;
    std::vector<std::thread> threads_;
    std::thread acceptor_;
};

/// An address on 127.0.0.1 that refuses connections.
std::string refusingUrl(const std::string& path = "/");

/// "HTTP/1.1 200 OK" with that body and its length.
std::string okReply(std::string_view body, std::string_view moreHeaders = {});

}  // namespace halvane::test
