#pragma once

#include "request/CenterSettings.h"
#include "request/ConsoleLog.h"
#include "request/RequestEnvironment.h"
#include "request/XMBatchRequest.h"
#include "request/XMChainRequest.h"

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <variant>

namespace halvane::request {

class XMEngine;

/// The entry point of the request layer: requests go in by a callback that fills them, results come out by callbacks.
///
/// **Thread.** Any. Configuration callbacks, `onCancel` and the request hook run inside the call, on the caller's thread;
/// the steps of a chain behind its first, and the hook for them, where the step before has ended. The other hooks and
/// progress run on the engine's completion queue, several requests at once; success, failure and finished too, or, where
/// there is one, on the `callbackQueue`. No lock is held while a callback runs, except a batch's own during its report.
///
/// **Order.** Progress, then either success or failure, then finished; then the request lets go of its callbacks. A failed
/// request with retries left is sent again 2 seconds later and tells nobody of that failure. That counts for cancelled ones
/// too.
///
/// **Lifetime.** A running request is kept by its task, batches and chains by the center. The center does not wait for them:
/// after it is destroyed, which any callback may do, nobody is told of what still runs. That goes on to its end, if
/// others hold the engine; with the engine's last owner it is cancelled.
class XMCenter : public std::enable_shared_from_this<XMCenter> {
    struct Key {};

public:
    using ConfigBlock = std::function<void(XMConfig&)>;
    using RequestBlock = std::function<void(XMRequest&)>;
    using BatchBlock = std::function<void(XMBatchRequest&)>;
    using ChainBlock = std::function<void(XMChainRequest&)>;

    /// What an identifier stands for; std::monostate for nothing.
    using Running =
        std::variant<std::monostate, std::shared_ptr<XMRequest>, std::shared_ptr<XMBatchRequest>, std::shared_ptr<XMChainRequest>>;
    using CancelBlock = std::function<void(const Running&)>;

    /// A new center in the process's environment, with the shared engine.
    static std::shared_ptr<XMCenter> center();
    /// A new center in an environment of the caller's.
    static std::shared_ptr<XMCenter> center(RequestEnvironment environment, std::shared_ptr<XMEngine> engine);
    /// The one of the process. Made by the first call, never destroyed.
    static const std::shared_ptr<XMCenter>& defaultCenter();

    XMCenter(Key key, RequestEnvironment environment, std::shared_ptr<XMEngine> engine);
    ~XMCenter();
    XMCenter(const XMCenter&) = delete;
    XMCenter& operator=(const XMCenter&) = delete;

    // What counts for all requests. A change counts for requests that are prepared, and hooks that are called, from then on.

    void setupConfig(const ConfigBlock& configure);
    /// One entry; an absent value removes it.
    void setGeneralHeaderValue(std::optional<std::string> value, const std::string& field);
    void setGeneralParameterValue(std::optional<util::Value> value, const std::string& key);
    void setRequestProcessBlock(XMRequestProcessBlock block);
    void setResponseProcessBlock(XMResponseProcessBlock block);
    void setErrorProcessBlock(XMErrorProcessBlock block);
    /// As they are now.
    [[nodiscard]] std::shared_ptr<const CenterSettings> settings() const;

    // Sending. Each answers the identifier under which it can be found and cancelled, absent when nothing was started.

    std::optional<std::string> sendRequest(const RequestBlock& configure, XMCallbacks callbacks = {});
    /// Absent, and never a callback, for a batch without requests.
    std::optional<std::string> sendBatchRequest(const BatchBlock& configure, XMGroupCallbacks callbacks = {});
    /// Absent, and never a callback, for a chain without `onFirst`.
    std::optional<std::string> sendChainRequest(const ChainBlock& configure, XMGroupCallbacks callbacks = {});

    /// Tells `onCancel` what was cancelled before it returns. The end comes by the callbacks of that, as Cancelled, perhaps
    /// before `onCancel` on another thread; what has retries left, though, is sent again. A batch or chain sends no request
    /// any more that it has not sent yet: such a one ends as Cancelled, which neither log nor hooks see. A download whose file
    /// stands already ends as the success that it is.
    void cancelRequest(const std::optional<std::string>& identifier, const CancelBlock& onCancel = {});
    [[nodiscard]] Running getRequest(const std::optional<std::string>& identifier) const;

    /// False only when it is known that nothing can be reached.
    [[nodiscard]] bool isNetworkReachable() const;
    [[nodiscard]] XMNetworkStatus networkConnectionType() const;

private:
    template <typename Change>
    void change(Change change);

    void prepare(XMRequest& request, XMCallbacks callbacks) const;
    void xm_sendRequest(const std::shared_ptr<XMRequest>& request);
    void ended(const std::shared_ptr<XMRequest>& request, Response response, Failure failure);
    void succeeded(const std::shared_ptr<XMRequest>& request, Response response);
    void failed(const std::shared_ptr<XMRequest>& request, Failure failure);
    void deliver(const std::shared_ptr<XMRequest>& request, Outcome outcome, Response response, Failure failure) const;

    void sendMember(const std::shared_ptr<XMBatchRequest>& batch, const std::shared_ptr<XMRequest>& member);
    void sendStep(const std::shared_ptr<XMChainRequest>& chain);
    void stepEnded(const std::shared_ptr<XMChainRequest>& chain, const XMRequest& step, const Response& response, const Failure& failure);
    /// Sends one of a batch or chain, unless that is cancelled.
    template <typename Group>
    void sendOf(const Group& group, const std::shared_ptr<XMRequest>& request, const XMFinishedBlock& finished);
    static void cancelInEngine(const std::shared_ptr<XMEngine>& engine, const XMRequest& request);
    /// Where results are told.
    [[nodiscard]] std::shared_ptr<platform::DispatchQueue> resultQueue() const;

    template <typename Group>
    void enter(const std::shared_ptr<Group>& group);
    void leave(const std::optional<std::string>& identifier);

    const RequestEnvironment environment_;
    const ConsoleLog log_;

    mutable std::mutex settingsMutex_;  // guards settings_
    std::shared_ptr<const CenterSettings> settings_;

    mutable std::mutex lock_;  // guards the two below
    std::uint64_t autoIncrement_ = 0;
    std::map<std::string, Running> runningBatchAndChainPool_;
};

}  // namespace halvane::request
