#pragma once

#include "platform/DispatchQueue.h"

#include <memory>
#include <string>

namespace halvane::platform {

/// Makes queues off the main thread. Any thread.
class DispatchQueues {
public:
    virtual ~DispatchQueues() = default;
    virtual std::shared_ptr<DispatchQueue> makeSerial(const std::string& name) = 0;
    virtual std::shared_ptr<DispatchQueue> makeConcurrent(const std::string& name) = 0;
};

}  // namespace halvane::platform
