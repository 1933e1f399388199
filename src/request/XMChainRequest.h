#pragma once

#include "request/GroupReport.h"
#include "request/XMRequest.h"

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace halvane::request {

class XMEngine;

/// Requests that are sent one after the other, each made from the response before it. The first failure ends the chain, and
/// so does a step that refuses to send.
///
///     chain.onFirst([](XMRequest& login) { … })
///         .onNext([](XMRequest& profile, const Response& session, bool& send) { … });
///
/// The caller names the steps in the configuration callback. The center holds the chain while it runs. Steps never overlap;
/// each runs on the thread on which the one before it ended.
class XMChainRequest {
public:
    /// Fills the request of a step from the response before it; `send`, true at first, set to false ends the chain as a
    /// failure.
    using NextBlock = std::function<void(XMRequest& request, const Response& previous, bool& send)>;

    XMChainRequest& onFirst(const std::function<void(XMRequest&)>& firstBlock);
    XMChainRequest& onNext(NextBlock nextBlock);

    /// "BC" and a number; set by the center. Any thread, once the chain was sent.
    [[nodiscard]] const std::optional<std::string>& identifier() const { return identifier_; }
    /// The step that runs now; null before the first and after the last one. Any thread.
    [[nodiscard]] std::shared_ptr<XMRequest> runningRequest() const;
    /// One place per step. To be read after the report, or in it.
    [[nodiscard]] const XMResults& responseArray() const { return responseArray_; }

    /// The running step has ended. True when the chain has ended by it; then the report has been made. Else `runningRequest`
    /// is the next step.
    bool onFinishedOneRequest(const XMRequest& request, const Response& response, const Failure& failure);

    void cleanCallbackBlocks();

    [[nodiscard]] XMResultsBlock chainSuccessBlock() const { return report_.callbacks()->onSuccess; }
    [[nodiscard]] XMResultsBlock chainFailureBlock() const { return report_.callbacks()->onFailure; }
    [[nodiscard]] XMGroupFinishedBlock chainFinishedBlock() const { return report_.callbacks()->onFinished; }

private:
    friend class XMCenter;

    bool end(Outcome outcome);
    void setRunningRequest(std::shared_ptr<XMRequest> request);
    /// How the step behind `step` is made; absent when there is none.
    [[nodiscard]] std::optional<NextBlock> nextBlockAfter(std::size_t step) const;

    std::optional<std::string> identifier_;  // set before the first step is sent
    std::weak_ptr<XMEngine> engine_;         // where its steps run; set with the identifier
    std::atomic<bool> cancelled_{false};     // no further step is sent
    mutable std::mutex mutex_;               // guards the two below, which others look at or clear; the rest belongs to the running step
    std::shared_ptr<XMRequest> runningRequest_;
    std::vector<NextBlock> nextBlockArray_;
    XMResults responseArray_;
    std::size_t chainIndex_ = 0;
    GroupReport report_;
};

}  // namespace halvane::request
