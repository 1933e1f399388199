#pragma once

#include "linux/base/AsioDispatchQueue.h"
#include "platform/DispatchQueues.h"

#include <mutex>
#include <vector>

namespace halvane::linux {

/// Makes queues that share one set of threads. A block may wait for a process or a service, so
/// there are some threads more than a small machine has processors.
///
/// Destroying it ends all its queues: blocks that run are waited for (unless one of them is what
/// destroys it), waiting ones never run; a queue that is still held drops what it is given.
class AsioDispatchQueues final : public platform::DispatchQueues {
public:
    static unsigned usualThreadCount();

    explicit AsioDispatchQueues(unsigned threadCount = usualThreadCount());
    ~AsioDispatchQueues() override;
    AsioDispatchQueues(const AsioDispatchQueues&) = delete;
    AsioDispatchQueues& operator=(const AsioDispatchQueues&) = delete;

    std::shared_ptr<platform::DispatchQueue> makeSerial(const std::string& name) override;
    std::shared_ptr<platform::DispatchQueue> makeConcurrent(const std::string& name) override;

private:
    std::shared_ptr<platform::DispatchQueue> make(const std::string& name, unsigned width);

    const unsigned threadCount_;
    const std::shared_ptr<asio::thread_pool> threads_;
    std::mutex mutex_;                                      // guards queues_
    std::vector<std::weak_ptr<AsioDispatchQueue>> queues_;  // those alive, to be closed at the end
};

}  // namespace halvane::linux
