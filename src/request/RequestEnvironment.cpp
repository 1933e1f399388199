#include "request/RequestEnvironment.h"

#include <atomic>
#include <stdexcept>
#include <utility>

namespace halvane::request {

namespace {

/// Never destroyed: requests may still run while the process ends.
std::atomic<const RequestEnvironment*>& slot() {
    static std::atomic<const RequestEnvironment*> environment{nullptr};
    return environment;
}

}  // namespace

const RequestEnvironment& RequestEnvironment::shared() {
    const RequestEnvironment* environment = slot().load();
    if (environment == nullptr) throw std::logic_error("the request layer was used before it was started");
    return *environment;
}

void RequestEnvironment::setShared(RequestEnvironment environment) {
    auto kept = std::make_unique<const RequestEnvironment>(std::move(environment));
    const RequestEnvironment* none = nullptr;
    if (!slot().compare_exchange_strong(none, kept.get())) throw std::logic_error("the request layer was started twice");
    kept.release();
}

}  // namespace halvane::request
