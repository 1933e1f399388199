#pragma once

#include <sys/types.h>
#include <string>

namespace halvane::bench {

/// A keep-alive server on 127.0.0.1 in a child process, so that its work does not count as the client's.
/// Make it before the first thread; it ends with this object, or with the process.
class HttpServer {
public:
    HttpServer();
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    [[nodiscard]] const std::string& url() const { return url_; }

private:
    std::string url_;
    pid_t child_ = -1;
};

}  // namespace halvane::bench
