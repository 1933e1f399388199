#pragma once

#include "Endpoint.h"
#include "HttpContestant.h"
#include "HttpQueue.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

namespace halvane::bench {

/// cpp-httplib, which blocks: five threads, each with a client that keeps its connection.
class HttplibThreads final : public HttpContestant {
public:
    explicit HttplibThreads(const std::string& url);
    ~HttplibThreads() override;
    HttplibThreads(const HttplibThreads&) = delete;
    HttplibThreads& operator=(const HttplibThreads&) = delete;

    void send(HttpExchange exchange, std::function<void(bool)> done) override;

private:
    struct Request {
        HttpExchange exchange;
        std::function<void(bool)> done;
    };

    void run();

    const Endpoint server_;
    HttpQueue queue_;
    std::mutex mutex_;  // guards the two below
    std::deque<Request> requests_;
    bool stopped_ = false;
    std::condition_variable changed_;
    std::vector<std::thread> threads_;
};

}  // namespace halvane::bench
