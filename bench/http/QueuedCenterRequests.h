#pragma once

#include "RequestCenter.h"

#include <memory>
#include <string>

namespace halvane::bench {

/// Requests of the request layer, callbacks and all, of which five run at a time.
class QueuedCenterRequests {
public:
    QueuedCenterRequests(const std::string& url, int count) : center_(url) {
        for (int i = 0; i < count; ++i) center_.send(HttpExchange::Get, [](bool) {});
    }

private:
    RequestCenter center_;
};

}  // namespace halvane::bench
