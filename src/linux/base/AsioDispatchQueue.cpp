#include "linux/base/AsioDispatchQueue.h"

#include <asio/post.hpp>
#include <asio/steady_timer.hpp>
#include <asio/thread_pool.hpp>

#include <pthread.h>

#include <algorithm>
#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <utility>

namespace halvane::linux {

namespace {

/// A thread that found one block looks for more before it sleeps, but gives other queues a turn.
constexpr int kBlocksInATurn = 64;

constexpr std::chrono::milliseconds kLongestDelay = std::chrono::hours(24 * 365);

/// Thread names hold 15 bytes; the end of a dotted name tells more than its beginning.
std::string threadNameFor(const std::string& name) { return name.size() <= 15 ? name : name.substr(name.size() - 15); }

}  // namespace

class AsioDispatchQueue::State : public std::enable_shared_from_this<State> {
public:
    State(std::shared_ptr<asio::thread_pool> threads, const std::string& name, unsigned width)
        : threads_(std::move(threads)), threadName_(threadNameFor(name)), width_(width) {}

    void add(Block block) {
        {
            const std::lock_guard lock(mutex_);
            if (closed_) return;
            waiting_.push_back(std::move(block));
            if (running_ == width_) return;
            ++running_;
        }
        postTurn();
    }

    void addAfter(std::chrono::milliseconds delay, Block&& block) {
        const std::lock_guard lock(mutex_);
        if (closed_) return;
        const auto number = ++lastDelayed_;
        auto& timer = delayed_.try_emplace(number, *threads_, std::move(block)).first->second.timer;
        timer.expires_after(std::min(delay, kLongestDelay));
        timer.async_wait([weak = weak_from_this(), number](const asio::error_code& cancelled) {
            if (cancelled) return;
            if (const auto self = weak.lock()) self->expired(number);
        });
    }

    void close() {
        // Destroyed after the lock is gone: what a block holds may come back to this queue.
        std::deque<Block> waiting;
        std::map<std::uint64_t, Delayed> delayed;
        const std::lock_guard lock(mutex_);
        closed_ = true;
        waiting.swap(waiting_);
        delayed.swap(delayed_);
    }

private:
    struct Delayed {
        Delayed(asio::thread_pool& threads, Block work) : timer(threads), block(std::move(work)) {}
        asio::steady_timer timer;
        Block block;
    };

    void postTurn() {
        asio::post(*threads_, [weak = weak_from_this()] {
            if (const auto self = weak.lock()) self->takeTurn();
        });
    }

    void takeTurn() noexcept {
        ::pthread_setname_np(::pthread_self(), threadName_.c_str());
        for (int ran = 0; ran < kBlocksInATurn; ++ran) {
            Block block;
            {
                const std::lock_guard lock(mutex_);
                if (waiting_.empty()) {
                    --running_;
                    return;
                }
                block = std::move(waiting_.front());
                waiting_.pop_front();
            }
            block();
        }
        postTurn();
    }

    void expired(std::uint64_t number) {
        decltype(delayed_)::node_type due;
        {
            const std::lock_guard lock(mutex_);
            due = delayed_.extract(number);
        }
        if (due) add(std::move(due.mapped().block));
    }

    const std::shared_ptr<asio::thread_pool> threads_;
    const std::string threadName_;
    const unsigned width_;
    std::mutex mutex_;  // guards all below
    std::deque<Block> waiting_;
    std::map<std::uint64_t, Delayed> delayed_;
    std::uint64_t lastDelayed_ = 0;
    unsigned running_ = 0;  // turns that were posted and have not ended
    bool closed_ = false;
};

AsioDispatchQueue::AsioDispatchQueue(std::shared_ptr<asio::thread_pool> threads, const std::string& name, unsigned width)
    : state_(std::make_shared<State>(std::move(threads), name, width)) {}

AsioDispatchQueue::~AsioDispatchQueue() { state_->close(); }

void AsioDispatchQueue::async(Block block) { state_->add(std::move(block)); }

void AsioDispatchQueue::after(std::chrono::milliseconds delay, Block block) {
    if (delay <= delay.zero()) {
        state_->add(std::move(block));
    } else {
        state_->addAfter(delay, std::move(block));
    }
}

void AsioDispatchQueue::close() { state_->close(); }

}  // namespace halvane::linux
