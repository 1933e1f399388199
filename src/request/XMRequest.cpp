#include "request/XMRequest.h"

#include <utility>

namespace halvane::request {

std::optional<std::string> XMRequest::identifier() const {
    const std::lock_guard lock(mutex_);
    return identifier_;
}

void XMRequest::setIdentifier(std::optional<std::string> identifier) {
    const std::lock_guard lock(mutex_);
    identifier_ = std::move(identifier);
}

std::shared_ptr<const XMCallbacks> XMRequest::callbacks() const {
    static const auto none = std::make_shared<const XMCallbacks>();
    const std::lock_guard lock(mutex_);
    return callbacks_ ? callbacks_ : none;
}

void XMRequest::installCallbacks(XMCallbacks given) {
    const auto before = callbacks();
    if (!given.onProgress) given.onProgress = before->onProgress;
    if (!given.onSuccess) given.onSuccess = before->onSuccess;
    if (!given.onFailure) given.onFailure = before->onFailure;
    if (!given.onFinished) given.onFinished = before->onFinished;
    auto installed = std::make_shared<const XMCallbacks>(std::move(given));
    const std::lock_guard lock(mutex_);
    callbacks_ = std::move(installed);
}

void XMRequest::deliver(Outcome outcome, const Response& response, const Failure& failure) {
    const auto told = callbacks();
    if (outcome == Outcome::Succeeded && told->onSuccess) told->onSuccess(response);
    if (outcome == Outcome::Failed && told->onFailure) told->onFailure(failure);
    if (told->onFinished && callbacks() == told) told->onFinished(response, failure);
    letGoOf(told);
}

std::shared_ptr<XMRequest> XMRequest::running(const std::shared_ptr<XMRequest>& request) {
    return {request.get(), [request, callbacks = request->callbacks()](XMRequest*) { request->letGoOf(callbacks); }};
}

void XMRequest::letGoOf(const std::shared_ptr<const XMCallbacks>& callbacks) {
    const std::lock_guard lock(mutex_);
    if (callbacks_ == callbacks) callbacks_.reset();
}

void XMRequest::cleanCallbackBlocks() {
    std::shared_ptr<const XMCallbacks> gone;  // outlives the lock: what callbacks hold may come back to this request
    const std::lock_guard lock(mutex_);
    gone = std::exchange(callbacks_, nullptr);
}

}  // namespace halvane::request
