#include "linux/base/AsioDispatchQueues.h"

#include <asio/thread_pool.hpp>

#include <algorithm>
#include <thread>
#include <utility>

namespace halvane::linux {

namespace {

/// Threads cannot wait for their own end: when the last owner goes inside a block, another thread ends them.
void endThreads(asio::thread_pool* threads) {
    if (threads->get_executor().running_in_this_thread()) {
        std::thread([threads] { delete threads; }).detach();
    } else {
        delete threads;
    }
}

}  // namespace

unsigned AsioDispatchQueues::usualThreadCount() { return std::max(4U, std::thread::hardware_concurrency()); }

AsioDispatchQueues::AsioDispatchQueues(unsigned threadCount)
    : threadCount_(std::max(1U, threadCount)), threads_(new asio::thread_pool(threadCount_), endThreads) {}

AsioDispatchQueues::~AsioDispatchQueues() {
    {
        const std::lock_guard lock(mutex_);
        for (const auto& weak : queues_) {
            if (const auto queue = weak.lock()) queue->close();
        }
    }
    threads_->stop();
    if (!threads_->get_executor().running_in_this_thread()) threads_->join();
}

std::shared_ptr<platform::DispatchQueue> AsioDispatchQueues::makeSerial(const std::string& name) { return make(name, 1); }

std::shared_ptr<platform::DispatchQueue> AsioDispatchQueues::makeConcurrent(const std::string& name) { return make(name, threadCount_); }

std::shared_ptr<platform::DispatchQueue> AsioDispatchQueues::make(const std::string& name, unsigned width) {
    auto queue = std::make_shared<AsioDispatchQueue>(threads_, name, width);
    const std::lock_guard lock(mutex_);
    std::erase_if(queues_, [](const auto& weak) { return weak.expired(); });
    queues_.push_back(queue);
    return queue;
}

}  // namespace halvane::linux
