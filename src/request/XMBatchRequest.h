#pragma once

#include "request/GroupReport.h"
#include "request/XMRequest.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace halvane::request {

class XMEngine;

/// Requests that are sent all at once and reported on once, when every one of them has ended. A failed one stops no other;
/// one failure makes the whole a failure, which still gets the others' responses.
///
/// The caller fills `requestArray` in the configuration callback and then leaves it alone. The center holds the batch
/// while it runs. The members' ends may come from several threads at once; the report is made under the batch's lock, on
/// the thread of the last one.
class XMBatchRequest {
public:
    /// "BC" and a number; set by the center. Any thread, once the batch was sent.
    [[nodiscard]] const std::optional<std::string>& identifier() const { return identifier_; }

    std::vector<std::shared_ptr<XMRequest>>
        requestArray;  ///< in the order in which results are reported; one that stands there twice counts once

    /// One place per member. To be read after the report, or in it.
    [[nodiscard]] const XMResults& responseArray() const { return responseArray_; }

    /// A member has ended, which is told once for each. True when the batch has ended by it; then the report has been made.
    bool onFinishedOneRequest(const XMRequest& request, const Response& response, const Failure& failure);

    void cleanCallbackBlocks() { report_.clear(); }

    [[nodiscard]] XMResultsBlock batchSuccessBlock() const { return report_.callbacks()->onSuccess; }
    [[nodiscard]] XMResultsBlock batchFailureBlock() const { return report_.callbacks()->onFailure; }
    [[nodiscard]] XMGroupFinishedBlock batchFinishedBlock() const { return report_.callbacks()->onFinished; }

private:
    friend class XMCenter;

    std::optional<std::string> identifier_;  // set before the first member is sent
    std::weak_ptr<XMEngine> engine_;         // where its members run; set with the identifier
    std::atomic<bool> cancelled_{false};     // no further member is sent
    std::mutex lock_;                        // guards what follows, the report included
    XMResults responseArray_;
    std::uint64_t finishedCount_ = 0;
    bool failed_ = false;
    GroupReport report_;
};

}  // namespace halvane::request
