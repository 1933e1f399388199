#include "http/SessionManager.h"

#include "platform/DispatchQueue.h"

#include <utility>

namespace halvane::http {

namespace {

util::Result<util::Value> valueOf(util::Result<std::optional<ResponseObject>> decoded) {
    if (!decoded) return decoded.error();
    const util::Value* value = *decoded ? (*decoded)->value() : nullptr;
    return value == nullptr ? util::Value() : *value;
}

}  // namespace

SessionManager::SessionManager(std::shared_ptr<platform::HttpSession> session, std::shared_ptr<platform::DispatchQueue> queue,
                               std::unique_ptr<RequestSerializer> requests, std::unique_ptr<ResponseSerializer> replies)
    : session_(std::move(session)), queue_(std::move(queue)), requests_(std::move(requests)), replies_(std::move(replies)) {}

void SessionManager::send(const std::string& method, const std::string& url, const std::optional<util::Dictionary>& parameters,
                          Completion completion) {
    auto request = requests_->request(method, url, parameters);
    if (!request) {
        queue_->async([completion = std::move(completion), error = request.error()] { completion(error); });
        return;
    }
    platform::HttpDataHandlers handlers;
    handlers.onCompletion = [replies = replies_, completion = std::move(completion)](platform::HttpDataResult result) {
        if (result.error) {
            completion(std::move(*result.error));
        } else {
            completion(valueOf(replies->decode(*result.response, std::move(result.body))));
        }
    };
    session_->dataTask(*std::move(request), std::move(handlers))->resume();
}

void SessionManager::cancelAllOperations() {
    for (const auto& task : session_->tasks()) task->cancel();
}

}  // namespace halvane::http
