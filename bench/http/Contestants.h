#pragma once

#include "FileTransfer.h"
#include "HttpContestant.h"
#include "TransferCost.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace halvane::bench {

struct SmallContestant {
    std::string name;
    std::function<std::unique_ptr<HttpContestant>(const std::string& url)> make;
};

struct LargeContestant {
    std::string name;
    std::function<std::unique_ptr<FileTransfer>()> make;
};

struct QueueContestant {
    std::string name;
    /// Queues so many requests, of which five may run at a time. They end with what it returns.
    std::function<std::shared_ptr<void>(const std::string& url, int count)> queueRequests;
};

// Who takes part, topic by topic; where there are ratios, the first of a list is the measure of the others.

[[nodiscard]] std::vector<SmallContestant> smallContestants();
[[nodiscard]] std::vector<LargeContestant> largeContestants(TransferDirection direction);
[[nodiscard]] std::vector<QueueContestant> queueContestants();

}  // namespace halvane::bench
