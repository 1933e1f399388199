#include "request/XMChainRequest.h"

#include <utility>

namespace halvane::request {

XMChainRequest& XMChainRequest::onFirst(const std::function<void(XMRequest&)>& firstBlock) {
    auto first = XMRequest::request();
    if (firstBlock) firstBlock(*first);
    setRunningRequest(std::move(first));
    responseArray_.emplace_back();
    return *this;
}

XMChainRequest& XMChainRequest::onNext(NextBlock nextBlock) {
    responseArray_.emplace_back();
    const std::lock_guard lock(mutex_);
    nextBlockArray_.push_back(std::move(nextBlock));
    return *this;
}

std::shared_ptr<XMRequest> XMChainRequest::runningRequest() const {
    const std::lock_guard lock(mutex_);
    return runningRequest_;
}

void XMChainRequest::setRunningRequest(std::shared_ptr<XMRequest> request) {
    const std::lock_guard lock(mutex_);
    runningRequest_.swap(request);
}

std::optional<XMChainRequest::NextBlock> XMChainRequest::nextBlockAfter(std::size_t step) const {
    const std::lock_guard lock(mutex_);
    return step < nextBlockArray_.size() ? std::optional(nextBlockArray_[step]) : std::nullopt;
}

bool XMChainRequest::onFinishedOneRequest(const XMRequest& /*request*/, const Response& response, const Failure& failure) {
    if (chainIndex_ >= responseArray_.size()) return true;
    XMResult& place = responseArray_[chainIndex_];
    const std::size_t step = chainIndex_++;
    if (!response) {
        if (failure) place = *failure;
        return end(Outcome::Failed);
    }
    place = *response;
    const auto fill = nextBlockAfter(step);  // a copy: it may clear the chain
    if (!fill) return end(Outcome::Succeeded);
    auto next = XMRequest::request();
    bool send = true;
    setRunningRequest(next);
    if (*fill) (*fill)(*next, response, send);
    return send ? false : end(Outcome::Failed);
}

bool XMChainRequest::end(Outcome outcome) {
    report_.tell(outcome, responseArray_);
    cleanCallbackBlocks();
    return true;
}

void XMChainRequest::cleanCallbackBlocks() {
    report_.clear();
    std::shared_ptr<XMRequest> running;  // outlive the lock: what they hold may come back to this chain
    std::vector<NextBlock> steps;
    const std::lock_guard lock(mutex_);
    running.swap(runningRequest_);
    steps.swap(nextBlockArray_);
}

}  // namespace halvane::request
