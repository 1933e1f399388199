#include "PlainCurl.h"

#include <utility>

namespace halvane::bench {

namespace {

size_t append(char* data, size_t size, size_t count, void* body) {
    static_cast<std::string*>(body)->append(data, size * count);
    return size * count;
}

}  // namespace

PlainCurl::PlainCurl(std::string url)
    : url_(std::move(url)),
      multi_(curl_multi_init()),
      postHeaders_(curl_slist_append(nullptr, "Content-Type: application/json; charset=utf-8")),
      thread_([this] { run(); }) {}

PlainCurl::~PlainCurl() {
    {
        const std::lock_guard lock(mutex_);
        stopped_ = true;
    }
    curl_multi_wakeup(multi_);
    thread_.join();
    for (const auto& transfer : transfers_) curl_easy_cleanup(transfer->easy);
    curl_multi_cleanup(multi_);
    curl_slist_free_all(postHeaders_);
}

void PlainCurl::send(HttpExchange exchange, std::function<void(bool)> done) {
    std::unique_lock lock(mutex_);
    requests_.push_back({exchange, std::move(done)});
    const bool wake = sleeping_.exchange(false);
    lock.unlock();
    if (wake) curl_multi_wakeup(multi_);
}

void PlainCurl::run() {
    std::vector<Request> taken;
    for (;;) {
        {
            const std::lock_guard lock(mutex_);
            if (stopped_) return;
            std::swap(taken, requests_);
            if (taken.empty()) sleeping_ = true;
        }
        if (taken.empty()) {
            curl_multi_poll(multi_, nullptr, 0, 60'000, nullptr);
            sleeping_ = false;
        }
        for (Request& request : taken) start(std::move(request));
        taken.clear();
        int running = 0;
        curl_multi_perform(multi_, &running);
        collect();
    }
}

void PlainCurl::start(Request request) {
    if (unused_.empty()) {
        transfers_.push_back(std::make_unique<Transfer>());
        Transfer& made = *transfers_.back();
        made.easy = curl_easy_init();
        curl_easy_setopt(made.easy, CURLOPT_PRIVATE, &made);
        curl_easy_setopt(made.easy, CURLOPT_NOSIGNAL, 1L);
        curl_easy_setopt(made.easy, CURLOPT_WRITEFUNCTION, &append);
        curl_easy_setopt(made.easy, CURLOPT_WRITEDATA, &made.body);
        unused_.push_back(&made);
    }
    Transfer& transfer = *unused_.back();
    unused_.pop_back();
    transfer.done = std::move(request.done);
    curl_easy_setopt(transfer.easy, CURLOPT_URL, url_.c_str());
    if (request.exchange == HttpExchange::Post) {
        curl_easy_setopt(transfer.easy, CURLOPT_POSTFIELDS, postedJson().data());
        curl_easy_setopt(transfer.easy, CURLOPT_POSTFIELDSIZE, static_cast<long>(postedJson().size()));
        curl_easy_setopt(transfer.easy, CURLOPT_HTTPHEADER, postHeaders_);
    } else {
        curl_easy_setopt(transfer.easy, CURLOPT_HTTPGET, 1L);
        curl_easy_setopt(transfer.easy, CURLOPT_HTTPHEADER, nullptr);
    }
    curl_multi_add_handle(multi_, transfer.easy);
}

void PlainCurl::collect() {
    int waiting = 0;
    while (const CURLMsg* message = curl_multi_info_read(multi_, &waiting)) {
        Transfer* transfer = nullptr;
        curl_easy_getinfo(message->easy_handle, CURLINFO_PRIVATE, &transfer);
        const bool whole = message->data.result == CURLE_OK;
        curl_multi_remove_handle(multi_, transfer->easy);
        queue_.async([done = std::move(transfer->done), body = std::exchange(transfer->body, {}), whole] { done(whole && !body.empty()); });
        unused_.push_back(transfer);
    }
}

}  // namespace halvane::bench
