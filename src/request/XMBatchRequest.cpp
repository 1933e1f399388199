#include "request/XMBatchRequest.h"

#include <algorithm>

namespace halvane::request {

bool XMBatchRequest::onFinishedOneRequest(const XMRequest& request, const Response& response, const Failure& failure) {
    const std::lock_guard lock(lock_);
    const auto member = std::ranges::find(requestArray, &request, [](const auto& one) { return one.get(); });
    const auto place = static_cast<std::size_t>(member - requestArray.begin());
    if (!response) failed_ = true;
    if (place < responseArray_.size()) {
        if (response) {
            responseArray_[place] = *response;
        } else if (failure) {
            responseArray_[place] = *failure;
        }
    }
    ++finishedCount_;
    if (finishedCount_ != requestArray.size()) return false;
    report_.tell(failed_ ? Outcome::Failed : Outcome::Succeeded, responseArray_);
    return true;
}

}  // namespace halvane::request
