#pragma once

#include "HttpContestant.h"
#include "HttpQueue.h"

#include <curl/curl.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace halvane::bench {

/// The measure of the others: what a careful programmer writes straight on libcurl. A multi loop on a
/// thread of its own, handles reused, each completion handed to a queue's thread.
class PlainCurl final : public HttpContestant {
public:
    explicit PlainCurl(std::string url);
    ~PlainCurl() override;
    PlainCurl(const PlainCurl&) = delete;
    PlainCurl& operator=(const PlainCurl&) = delete;

    void send(HttpExchange exchange, std::function<void(bool)> done) override;

private:
    struct Request {
        HttpExchange exchange;
        std::function<void(bool)> done;
    };
    struct Transfer {
        CURL* easy = nullptr;
        std::string body;
        std::function<void(bool)> done;
    };

    void run();
    void start(Request request);
    void collect();

    const std::string url_;
    HttpQueue queue_;
    CURLM* multi_;
    curl_slist* postHeaders_;
    std::vector<std::unique_ptr<Transfer>> transfers_;
    std::vector<Transfer*> unused_;
    std::atomic<bool> sleeping_{false};
    std::mutex mutex_;  // guards the two below
    std::vector<Request> requests_;
    bool stopped_ = false;
    std::thread thread_;
};

}  // namespace halvane::bench
