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
    nextBlockArray_.push_back(std::move(nextBlock));
    responseArray_.emplace_back();
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

bool XMChainRequest::onFinishedOneRequest(const XMRequest& /*request*/, const Response& response, const Failure& failure) {
    if (chainIndex_ >= responseArray_.size()) return true;
    XMResult& place = responseArray_[chainIndex_];
    const std::size_t step = chainIndex_++;
    if (!response) {
        if (failure) place = *failure;
        return end(Outcome::Failed);
    }
    place = *response;
    if (step >= nextBlockArray_.size()) return end(Outcome::Succeeded);
    auto next = XMRequest::request();
    bool send = true;
    setRunningRequest(next);
    const NextBlock fill = nextBlockArray_[step];  // which may clear the chain
    if (fill) fill(*next, response, send);
    return send ? false : end(Outcome::Failed);
}

bool XMChainRequest::end(Outcome outcome) {
    report_.tell(outcome, responseArray_);
    cleanCallbackBlocks();
    return true;
}

void XMChainRequest::cleanCallbackBlocks() {
    setRunningRequest(nullptr);
    report_.clear();
    nextBlockArray_.clear();
}

}  // namespace halvane::request
