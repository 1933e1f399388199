#pragma once

#include "http/RequestSerializer.h"
#include "http/ResponseSerializer.h"
#include "platform/HttpSession.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace halvane::http {

/// A transport session with a serializer for each direction, the one for replies of a kind that makes values. One thread at a time calls
/// it; results arrive on the session's result queue, exactly one for each call, never inside the call.
class SessionManager {
public:
    using Completion = std::function<void(util::Result<util::Value>)>;

    /// `queue` is the session's result queue.
    SessionManager(std::shared_ptr<platform::HttpSession> session, std::shared_ptr<platform::DispatchQueue> queue,
                   std::unique_ptr<RequestSerializer> requests, std::unique_ptr<ResponseSerializer> replies);

    void setRequestSerializer(std::unique_ptr<RequestSerializer> serializer) { requests_ = std::move(serializer); }
    /// Counts for requests that are sent from now on.
    void setResponseSerializer(std::unique_ptr<ResponseSerializer> serializer) { replies_ = std::move(serializer); }
    [[nodiscard]] RequestSerializer& requestSerializer() { return *requests_; }

    void send(const std::string& method, const std::string& url, const std::optional<util::Dictionary>& parameters, Completion completion);

    void cancelAllOperations();

private:
    std::shared_ptr<platform::HttpSession> session_;
    std::shared_ptr<platform::DispatchQueue> queue_;
    std::unique_ptr<RequestSerializer> requests_;
    std::shared_ptr<const ResponseSerializer> replies_;
};

}  // namespace halvane::http
