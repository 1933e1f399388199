#include "linux/http/NetworkLoop.h"

#include "linux/http/CurlErrors.h"

#include <algorithm>
#include <array>
#include <new>
#include <utility>

namespace halvane::linux_http {

namespace {

constexpr long kKeptConnections = 32;
constexpr std::size_t kKeptHandles = 32;

}  // namespace

NetworkLoop::NetworkLoop(std::shared_ptr<TaskBoard> board, platform::HttpSessionConfiguration configuration, std::uint64_t largestBody)
    : board_(std::move(board)),
      queue_(std::move(configuration.resultQueue)),
      tls_(std::move(configuration.tls)),
      context_{*board_, tls_, sockets_, largestBody},
      multi_(curl_multi_init()) {
    if (!multi_) throw std::bad_alloc();
    // libcurl's own limit follows the running transfers, and would close what the next ones need.
    curl_multi_setopt(multi_.get(), CURLMOPT_MAXCONNECTS, kKeptConnections);
}

void NetworkLoop::run() {
    TaskBoard::Work work;
    for (;;) {
        const bool anyWork = board_->takeWork(work);
        now_ = Clock::now();
        start(work.starts);
        cancel(work.cancels);
        if (work.closed && running_.empty()) break;
        if (!anyWork && ended_.empty()) sleep();
        perform();
        collect();
        watchIdleTimes();
        board_->end(ended_);
    }
    board_->end(ended_);
}

std::unique_ptr<Transfer> NetworkLoop::unusedTransfer() {
    if (unused_.empty()) return std::make_unique<Transfer>(context_);
    auto transfer = std::move(unused_.back());
    unused_.pop_back();
    return transfer;
}

void NetworkLoop::start(const std::vector<std::shared_ptr<CurlTask>>& tasks) {
    for (const auto& task : tasks) {
        running_.push_back(unusedTransfer());
        Transfer& transfer = *running_.back();
        if (auto error = transfer.begin(task, now_)) {
            transfer.fail(std::move(*error));
            end(running_.size() - 1);
        } else {
            curl_multi_add_handle(multi_.get(), transfer.handle());
        }
    }
}

void NetworkLoop::cancel(const std::vector<std::shared_ptr<CurlTask>>& tasks) {
    for (const auto& task : tasks) {
        const auto found = std::ranges::find(running_, task.get(), [](const auto& transfer) { return transfer->task(); });
        if (found == running_.end()) continue;
        (*found)->fail(cancelledError());
        end(static_cast<std::size_t>(found - running_.begin()));
    }
}

void NetworkLoop::end(std::size_t running) {
    auto transfer = std::move(running_[running]);
    running_[running] = std::move(running_.back());
    running_.pop_back();
    curl_multi_remove_handle(multi_.get(), transfer->handle());
    auto [task, outcome] = transfer->end();
    ended_.push_back({std::move(task), std::move(outcome)});
    if (unused_.size() < kKeptHandles) unused_.push_back(std::move(transfer));
}

void NetworkLoop::perform() {
    int stillRunning = 0;
    curl_multi_perform(multi_.get(), &stillRunning);
}

void NetworkLoop::collect() {
    int waiting = 0;
    while (const CURLMsg* message = curl_multi_info_read(multi_.get(), &waiting)) {
        if (message->msg != CURLMSG_DONE) continue;
        Transfer& transfer = Transfer::of(message->easy_handle);
        const CURLcode code = message->data.result;
        curl_multi_remove_handle(multi_.get(), transfer.handle());
        if (transfer.finish(code) == Transfer::Next::SendAgain) {
            curl_multi_add_handle(multi_.get(), transfer.handle());
            continue;
        }
        const auto found = std::ranges::find(running_, &transfer, [](const auto& one) { return one.get(); });
        end(static_cast<std::size_t>(found - running_.begin()));
    }
}

bool NetworkLoop::sharesConnection(const Transfer& transfer) const {
    return std::ranges::any_of(running_,
                               [&](const auto& other) { return other.get() != &transfer && other->localPort() == transfer.localPort(); });
}

void NetworkLoop::watchIdleTimes() {
    if (running_.empty()) return;
    now_ = Clock::now();
    for (std::size_t i = running_.size(); i-- > 0;) {
        Transfer& transfer = *running_[i];
        transfer.noteMovement(now_);
        // What moves on a connection that several streams share says nothing about one of them.
        if (now_ < transfer.deadline() || (!sharesConnection(transfer) && transfer.movedUnseen(now_))) continue;
        transfer.timeOut();
        end(i);
    }
}

void NetworkLoop::sleep() {
    constexpr std::chrono::milliseconds kLongest = std::chrono::hours(1);
    auto longest = board_->watchDelivery(now_).value_or(kLongest);
    for (const auto& transfer : running_) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(transfer->deadline() - now_);
        longest = std::clamp(left, std::chrono::milliseconds(0), longest);
    }
    std::array<curl_waitfd, 1> wake{{{board_->wakeDescriptor(), CURL_WAIT_POLLIN, 0}}};
    curl_multi_poll(multi_.get(), wake.data(), wake.size(), static_cast<int>(longest.count()), nullptr);
    board_->awake(wake[0].revents != 0 ? TaskBoard::WokenBy::Descriptor : TaskBoard::WokenBy::Other);
}

}  // namespace halvane::linux_http
