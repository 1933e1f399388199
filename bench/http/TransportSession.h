#pragma once

#include "HttpContestant.h"
#include "HttpQueue.h"
#include "linux/http/CurlTransport.h"

#include <memory>
#include <string>

namespace halvane::bench {

/// A session of our transport, its results on a queue's thread.
class TransportSession final : public HttpContestant {
public:
    explicit TransportSession(std::string url)
        : url_(std::move(url)), session_(linux_http::CurlTransport().makeSession({.resultQueue = queue_})) {}

    void send(HttpExchange exchange, std::function<void(bool)> done) override {
        platform::HttpRequest request{.url = url_};
        if (exchange == HttpExchange::Post) {
            request.method = "POST";
            request.headers.set("Content-Type", "application/json; charset=utf-8");
            request.body = postedJson();
        }
        session_
            ->dataTask(std::move(request),
                       {.onCompletion = [done = std::move(done)](
                                            const platform::HttpDataResult& result) { done(!result.error && !result.body.empty()); }})
            ->resume();
    }

private:
    const std::string url_;
    const std::shared_ptr<HttpQueue> queue_ = std::make_shared<HttpQueue>();
    const std::shared_ptr<platform::HttpSession> session_;
};

}  // namespace halvane::bench
