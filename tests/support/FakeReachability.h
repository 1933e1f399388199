#pragma once

#include "platform/Reachability.h"

namespace halvane::test {

/// Reports what the test says, when it says so.
class FakeReachability final : public platform::Reachability {
public:
    void startMonitoring() override { ++starts; }
    platform::ReachabilityStatus status() const override { return current; }
    void setHandler(Handler value) override { handler = std::move(value); }

    void become(platform::ReachabilityStatus status) {
        current = status;
        if (handler) handler(status);
    }

    platform::ReachabilityStatus current = platform::ReachabilityStatus::Unknown;
    Handler handler;
    int starts = 0;
};

}  // namespace halvane::test
