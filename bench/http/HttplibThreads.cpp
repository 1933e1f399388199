#include "HttplibThreads.h"

#include <httplib.h>

#include <utility>

namespace halvane::bench {

HttplibThreads::HttplibThreads(const std::string& url) : server_(url) {
    constexpr int kThreads = 5;
    for (int i = 0; i < kThreads; ++i) threads_.emplace_back([this] { run(); });
}

HttplibThreads::~HttplibThreads() {
    {
        const std::lock_guard lock(mutex_);
        stopped_ = true;
    }
    changed_.notify_all();
    for (std::thread& thread : threads_) thread.join();
}

void HttplibThreads::send(HttpExchange exchange, std::function<void(bool)> done) {
    {
        const std::lock_guard lock(mutex_);
        requests_.push_back({exchange, std::move(done)});
    }
    changed_.notify_one();
}

void HttplibThreads::run() {
    httplib::Client client(server_.host, server_.port);
    client.set_keep_alive(true);
    client.set_tcp_nodelay(true);  // it writes header and body one after the other
    for (;;) {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return stopped_ || !requests_.empty(); });
        if (stopped_) return;
        Request request = std::move(requests_.front());
        requests_.pop_front();
        lock.unlock();
        auto result = request.exchange == HttpExchange::Post ? client.Post(server_.path, postedJson(), "application/json; charset=utf-8")
                                                             : client.Get(server_.path);
        std::string body = result ? std::move(result->body) : std::string();
        queue_.async([done = std::move(request.done), body = std::move(body)] { done(!body.empty()); });
    }
}

}  // namespace halvane::bench
