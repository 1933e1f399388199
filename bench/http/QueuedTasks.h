#pragma once

#include "HttpQueue.h"
#include "linux/http/CurlTransport.h"

#include <memory>
#include <string>

namespace halvane::bench {

/// Tasks on a session of our transport that lets five run at a time.
class QueuedTasks {
public:
    QueuedTasks(const std::string& url, int count) {
        for (int i = 0; i < count; ++i)
            session_->dataTask({.url = url}, {.onCompletion = [](const platform::HttpDataResult&) {}})->resume();
    }

private:
    const std::shared_ptr<HttpQueue> queue_ = std::make_shared<HttpQueue>();
    const std::shared_ptr<platform::HttpSession> session_ =
        linux_http::CurlTransport().makeSession({.resultQueue = queue_, .maximumConcurrentTasks = 5});
};

}  // namespace halvane::bench
