#pragma once

#include "request/XMTypes.h"

#include <cstdint>
#include <memory>
#include <mutex>

namespace halvane::request {

/// Who hears of the end of a batch or chain. Any thread; a callback may clear it while it is told.
class GroupReport {
public:
    void set(XMGroupCallbacks callbacks);
    /// Those that will be told; never null.
    [[nodiscard]] std::shared_ptr<const XMGroupCallbacks> callbacks() const;
    void clear();
    /// Success or failure first, then finished unless that has cleared it; then nobody is told any more.
    void tell(Outcome outcome, const XMResults& results);

private:
    mutable std::mutex mutex_;  // guards callbacks_, never held while one runs
    std::shared_ptr<const XMGroupCallbacks> callbacks_;
};

}  // namespace halvane::request
