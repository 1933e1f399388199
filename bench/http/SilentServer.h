#pragma once

#include <string>

namespace halvane::bench {

/// Listens on 127.0.0.1 and never says a word.
class SilentServer {
public:
    /// Throws std::runtime_error.
    SilentServer();
    ~SilentServer();
    SilentServer(const SilentServer&) = delete;
    SilentServer& operator=(const SilentServer&) = delete;

    [[nodiscard]] int port() const { return port_; }
    [[nodiscard]] int descriptor() const { return listener_; }
    [[nodiscard]] std::string url() const { return "http://127.0.0.1:" + std::to_string(port_) + "/api/v1/user/info"; }

private:
    int listener_;
    int port_ = 0;
};

}  // namespace halvane::bench
