#pragma once

#include "SilentServer.h"

#include <string>
#include <thread>

namespace halvane::bench {

/// Takes requests of any method whole and answers each with a little JSON: a form cannot be sent to a server of files.
/// One connection after the other, on a thread of its own.
class SinkServer {
public:
    /// Throws std::runtime_error.
    SinkServer();
    ~SinkServer();
    SinkServer(const SinkServer&) = delete;
    SinkServer& operator=(const SinkServer&) = delete;

    [[nodiscard]] std::string url() const { return server_.url(); }

private:
    void serve() const;

    const SilentServer server_;
    std::thread thread_;
};

}  // namespace halvane::bench
