#pragma once

#include "server/Clock.h"
#include "server/http/HttpServer.h"

#include <cstdio>
#include <filesystem>
#include <memory>
#include <mutex>

namespace halvane::server {

/// One line a request: time, method, path, status, bytes, duration. No header, query or body ever
/// stands in it. Any thread.
class AccessLog {
public:
    /// Appends to `file`, made 0600; "-" is standard error. Throws std::system_error.
    AccessLog(const std::filesystem::path& file, Clock clock);

    /// `exchange.path` is written as it is: whoever calls has taken the secrets out.
    void write(const HttpServer::Exchange& exchange);

private:
    struct Closer {
        void operator()(std::FILE* file) const;
    };
    const Clock clock_;
    std::mutex mutex_;
    std::unique_ptr<std::FILE, Closer> file_;  ///< guarded by mutex_
};

}  // namespace halvane::server
