#include "request/GroupReport.h"

#include <utility>

namespace halvane::request {

void GroupReport::set(XMGroupCallbacks callbacks) {
    auto given = std::make_shared<const XMGroupCallbacks>(std::move(callbacks));
    const std::lock_guard lock(mutex_);
    callbacks_.swap(given);
}

void GroupReport::clear() {
    std::shared_ptr<const XMGroupCallbacks> gone;  // outlives the lock: what callbacks hold may come back to here
    const std::lock_guard lock(mutex_);
    gone.swap(callbacks_);
}

std::shared_ptr<const XMGroupCallbacks> GroupReport::current() const {
    const std::lock_guard lock(mutex_);
    return callbacks_;
}

void GroupReport::tell(Outcome outcome, const XMResults& results) {
    if (const auto callbacks = current()) {
        const bool succeeded = outcome == Outcome::Succeeded;
        if (const auto& told = succeeded ? callbacks->onSuccess : callbacks->onFailure) told(results);
        if (callbacks->onFinished && current() == callbacks) {
            const std::optional<XMResults> given(results);
            callbacks->onFinished(succeeded ? given : std::nullopt, succeeded ? std::nullopt : given);
        }
    }
    clear();
}

}  // namespace halvane::request
