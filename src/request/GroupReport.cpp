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

std::shared_ptr<const XMGroupCallbacks> GroupReport::callbacks() const {
    static const auto none = std::make_shared<const XMGroupCallbacks>();
    const std::lock_guard lock(mutex_);
    return callbacks_ ? callbacks_ : none;
}

void GroupReport::tell(Outcome outcome, const XMResults& results) {
    const auto told = callbacks();
    const bool succeeded = outcome == Outcome::Succeeded;
    if (const auto& one = succeeded ? told->onSuccess : told->onFailure) one(results);
    if (told->onFinished && callbacks() == told) {
        const std::optional<XMResults> given(results);
        told->onFinished(succeeded ? given : std::nullopt, succeeded ? std::nullopt : given);
    }
    clear();
}

}  // namespace halvane::request
