#include "request/XMCenter.h"

#include "request/XMEngine.h"

#include <set>
#include <utility>

namespace halvane::request {

namespace {

constexpr std::chrono::seconds kRetryDelay{2};

util::Error cancelledBeforeSending() {
    return util::urlError(util::UrlError::Cancelled, "The batch or chain was cancelled before this request was sent.");
}

template <typename Block>
std::shared_ptr<const Block> shared(Block block) {
    return block ? std::make_shared<const Block>(std::move(block)) : nullptr;
}

bool isGroup(const std::string& identifier) { return identifier.starts_with("BC"); }

}  // namespace

std::shared_ptr<XMCenter> XMCenter::center() { return center(RequestEnvironment::shared(), XMEngine::sharedEngine()); }

std::shared_ptr<XMCenter> XMCenter::center(RequestEnvironment environment, std::shared_ptr<XMEngine> engine) {
    return std::make_shared<XMCenter>(Key(), std::move(environment), std::move(engine));
}

const std::shared_ptr<XMCenter>& XMCenter::defaultCenter() {
    static const auto* shared = new std::shared_ptr<XMCenter>(center());
    return *shared;
}

XMCenter::XMCenter(Key /*key*/, RequestEnvironment environment, std::shared_ptr<XMEngine> engine)
    : environment_(std::move(environment)),
      log_(environment_.log),
      settings_(std::make_shared<const CenterSettings>(CenterSettings{.engine = std::move(engine)})) {}

XMCenter::~XMCenter() = default;

// What counts for all requests.

std::shared_ptr<const CenterSettings> XMCenter::settings() const {
    const std::lock_guard lock(settingsMutex_);
    return settings_;
}

template <typename Change>
void XMCenter::change(Change change) {
    std::shared_ptr<const CenterSettings> before;  // outlives the lock: what it holds may come back to this center
    const std::lock_guard lock(settingsMutex_);
    auto changed = std::make_shared<CenterSettings>(*settings_);
    change(*changed);
    before = std::exchange(settings_, std::move(changed));
}

void XMCenter::setupConfig(const ConfigBlock& configure) {
    const auto self = shared_from_this();
    XMConfig config;
    if (configure) configure(config);
    change([&config](CenterSettings& settings) { settings.take(config); });
}

void XMCenter::setGeneralHeaderValue(std::optional<std::string> value, const std::string& field) {
    change([&](CenterSettings& settings) {
        value ? settings.generalHeaders.set(field, *std::move(value)) : settings.generalHeaders.remove(field);
    });
}

void XMCenter::setGeneralParameterValue(std::optional<util::Value> value, const std::string& key) {
    change([&](CenterSettings& settings) {
        value ? settings.generalParameters.set(key, *std::move(value)) : settings.generalParameters.remove(key);
    });
}

void XMCenter::setRequestProcessBlock(XMRequestProcessBlock block) {
    change([&block](CenterSettings& settings) { settings.requestProcessHandler = shared(std::move(block)); });
}

void XMCenter::setResponseProcessBlock(XMResponseProcessBlock block) {
    change([&block](CenterSettings& settings) { settings.responseProcessHandler = shared(std::move(block)); });
}

void XMCenter::setErrorProcessBlock(XMErrorProcessBlock block) {
    change([&block](CenterSettings& settings) { settings.errorProcessHandler = shared(std::move(block)); });
}

// One request.

std::optional<std::string> XMCenter::sendRequest(const RequestBlock& configure, XMCallbacks callbacks) {
    const auto self = shared_from_this();  // which a callback on the way may be the last but us to hold
    const auto request = XMRequest::request();
    if (configure) configure(*request);
    prepare(*request, std::move(callbacks));
    xm_sendRequest(XMRequest::running(request));
    return request->identifier();
}

void XMCenter::prepare(XMRequest& request, XMCallbacks callbacks) const {
    if (request.requestType == XMRequestNormal) callbacks.onProgress = nullptr;
    if (callbacks.onProgress) {
        callbacks.onProgress = [weak = weak_from_this(), told = std::move(callbacks.onProgress)](const platform::HttpProgress& progress) {
            if (const auto center = weak.lock()) told(progress);
        };
    }
    request.installCallbacks(std::move(callbacks));
    const auto settings = this->settings();
    settings->fillIn(request);
    if (settings->requestProcessHandler) (*settings->requestProcessHandler)(request);
}

void XMCenter::xm_sendRequest(const std::shared_ptr<XMRequest>& request) {
    const auto settings = this->settings();
    if (settings->consoleLog) log_.request(*request);
    settings->engine->sendRequest(request, [weak = weak_from_this(), request](Response response, Failure failure) {
        if (const auto center = weak.lock()) center->ended(request, std::move(response), std::move(failure));
    });
}

void XMCenter::ended(const std::shared_ptr<XMRequest>& request, Response response, Failure failure) {
    failure ? failed(request, std::move(failure)) : succeeded(request, std::move(response));
}

void XMCenter::succeeded(const std::shared_ptr<XMRequest>& request, Response response) {
    const auto settings = this->settings();
    if (settings->responseProcessHandler) {
        Failure failure;
        Response replacement = (*settings->responseProcessHandler)(*request, response, failure);
        if (replacement) response = std::move(replacement);
        if (failure) return failed(request, std::move(failure));
    }
    if (settings->consoleLog) log_.response(*request, response);
    deliver(request, Outcome::Succeeded, std::move(response), std::nullopt);
}

void XMCenter::failed(const std::shared_ptr<XMRequest>& request, Failure failure) {
    const auto settings = this->settings();
    if (settings->consoleLog) log_.failure(*request, failure);
    if (settings->errorProcessHandler) (*settings->errorProcessHandler)(*request, failure);
    if (request->retryCount == 0) return deliver(request, Outcome::Failed, std::nullopt, std::move(failure));
    --request->retryCount;
    environment_.backgroundQueue->after(kRetryDelay, [weak = weak_from_this(), request] {
        if (const auto center = weak.lock()) center->xm_sendRequest(request);
    });
}

void XMCenter::deliver(const std::shared_ptr<XMRequest>& request, Outcome outcome, Response response, Failure failure) const {
    const auto queue = settings()->callbackQueue;
    if (!queue) return request->deliver(outcome, response, failure);
    queue->async([weak = weak_from_this(), request, outcome, response = std::move(response), failure = std::move(failure)] {
        if (const auto center = weak.lock()) request->deliver(outcome, response, failure);
    });
}

std::shared_ptr<platform::DispatchQueue> XMCenter::resultQueue() const {
    const auto queue = settings()->callbackQueue;
    return queue ? queue : environment_.completionQueue;
}

// Batches and chains. Each is in the pool before its first request is sent, so that it can be found, cancelled and taken
// out again from then on.

template <typename Group>
void XMCenter::enter(const std::shared_ptr<Group>& group) {
    const auto engine = settings()->engine;
    const std::lock_guard lock(lock_);
    group->identifier_ = "BC" + std::to_string(++autoIncrement_);
    group->engine_ = engine;
    runningBatchAndChainPool_.emplace(*group->identifier_, group);
}

void XMCenter::leave(const std::optional<std::string>& identifier) {
    Running gone;  // outlives the lock
    const std::lock_guard lock(lock_);
    if (auto entry = runningBatchAndChainPool_.extract(*identifier)) gone = std::move(entry.mapped());
}

std::optional<std::string> XMCenter::sendBatchRequest(const BatchBlock& configure, XMGroupCallbacks callbacks) {
    const auto self = shared_from_this();
    const auto batch = std::make_shared<XMBatchRequest>();
    if (configure) configure(*batch);
    std::set<std::shared_ptr<XMRequest>> known{nullptr};
    std::erase_if(batch->requestArray, [&known](const auto& member) { return !known.insert(member).second; });
    if (batch->requestArray.empty()) return std::nullopt;
    batch->report_.set(std::move(callbacks));
    batch->responseArray_.assign(batch->requestArray.size(), XMResult());
    enter(batch);
    for (const auto& member : batch->requestArray) sendMember(batch, member);
    return batch->identifier_;
}

void XMCenter::sendMember(const std::shared_ptr<XMBatchRequest>& batch, const std::shared_ptr<XMRequest>& member) {
    const auto finished = [weak = weak_from_this(), batch, member = member.get()](const Response& response, const Failure& failure) {
        const auto center = weak.lock();
        if (center && batch->onFinishedOneRequest(*member, response, failure)) center->leave(batch->identifier_);
    };
    sendOf(*batch, member, finished);
}

template <typename Group>
void XMCenter::sendOf(const Group& group, const std::shared_ptr<XMRequest>& request, const XMFinishedBlock& finished) {
    if (!group.cancelled_) prepare(*request, {.onFinished = finished});
    const auto running = XMRequest::running(request);
    // Cancelled by now, perhaps by the hook: it ends without a task, so that no byte of it goes out.
    if (group.cancelled_) return resultQueue()->async([finished, running] { finished(std::nullopt, cancelledBeforeSending()); });
    xm_sendRequest(running);
    if (group.cancelled_) cancelInEngine(group.engine_.lock(), *request);
}

std::optional<std::string> XMCenter::sendChainRequest(const ChainBlock& configure, XMGroupCallbacks callbacks) {
    const auto self = shared_from_this();
    const auto chain = std::make_shared<XMChainRequest>();
    if (configure) configure(*chain);
    if (!chain->runningRequest()) return std::nullopt;
    chain->report_.set(std::move(callbacks));
    enter(chain);
    sendStep(chain);
    return chain->identifier_;
}

void XMCenter::sendStep(const std::shared_ptr<XMChainRequest>& chain) {
    const auto step = chain->runningRequest();
    if (!step) return leave(chain->identifier_);  // cleared by its own step
    const auto finished = [weak = weak_from_this(), chain, step = step.get()](const Response& response, const Failure& failure) {
        if (const auto center = weak.lock()) center->stepEnded(chain, *step, response, failure);
    };
    sendOf(*chain, step, finished);
}

void XMCenter::stepEnded(const std::shared_ptr<XMChainRequest>& chain, const XMRequest& step, const Response& response,
                         const Failure& failure) {
    chain->onFinishedOneRequest(step, response, failure) ? leave(chain->identifier_) : sendStep(chain);
}

// Control and queries.

void XMCenter::cancelInEngine(const std::shared_ptr<XMEngine>& engine, const XMRequest& request) {
    const auto identifier = request.identifier();
    if (engine && identifier) engine->cancelRequestByIdentifier(*identifier);
}

void XMCenter::cancelRequest(const std::optional<std::string>& identifier, const CancelBlock& onCancel) {
    Running cancelled;
    if (identifier && isGroup(*identifier)) {
        {
            const std::lock_guard lock(lock_);
            if (auto entry = runningBatchAndChainPool_.extract(*identifier)) cancelled = std::move(entry.mapped());
        }
        if (const auto* batch = std::get_if<std::shared_ptr<XMBatchRequest>>(&cancelled)) {
            (*batch)->cancelled_ = true;
            for (const auto& member : (*batch)->requestArray) cancelInEngine((*batch)->engine_.lock(), *member);
        } else if (const auto* chain = std::get_if<std::shared_ptr<XMChainRequest>>(&cancelled)) {
            (*chain)->cancelled_ = true;
            if (const auto running = (*chain)->runningRequest()) cancelInEngine((*chain)->engine_.lock(), *running);
        }
    } else if (identifier) {
        if (auto request = settings()->engine->cancelRequestByIdentifier(*identifier)) cancelled = std::move(request);
    }
    if (onCancel) onCancel(cancelled);
}

XMCenter::Running XMCenter::getRequest(const std::optional<std::string>& identifier) const {
    if (!identifier) return {};
    if (!isGroup(*identifier)) {
        auto request = settings()->engine->getRequestByIdentifier(*identifier);
        return request ? Running(std::move(request)) : Running();
    }
    const std::lock_guard lock(lock_);
    const auto entry = runningBatchAndChainPool_.find(*identifier);
    return entry == runningBatchAndChainPool_.end() ? Running() : entry->second;
}

bool XMCenter::isNetworkReachable() const { return networkConnectionType() != XMNetworkStatus::NotReachable; }

XMNetworkStatus XMCenter::networkConnectionType() const { return settings()->engine->reachabilityStatus(); }

}  // namespace halvane::request
