#pragma once

#include "HttpContestant.h"
#include "HttpQueue.h"
#include "linux/http/CurlTransport.h"
#include "request/XMCenter.h"
#include "request/XMEngine.h"
#include "request/factory/RequestLayer.h"
#include "util/Json.h"

#include <memory>
#include <string>
#include <thread>

namespace halvane::bench {

/// The whole request layer: a request filled by a callback, parameters to JSON, the reply judged and decoded.
class RequestCenter : public HttpContestant {
public:
    /// Results on the same kind of queue as the others'.
    explicit RequestCenter(std::string url) : RequestCenter(std::move(url), onOneThread()) {}
    ~RequestCenter() override {
        // What is being told holds the center for a moment; the queue's own thread must not be the last to hold the queue.
        center_.reset();
        while (queue_.use_count() > 1) std::this_thread::yield();
    }
    RequestCenter(const RequestCenter&) = delete;
    RequestCenter& operator=(const RequestCenter&) = delete;

    void send(HttpExchange exchange, std::function<void(bool)> done) override {
        center_->sendRequest(
            [&](request::XMRequest& request) {
                request.url = url_;
                request.requestSerializerType = request::XMRequestSerializerJSON;
                if (exchange == HttpExchange::Get) {
                    request.httpMethod = request::XMHTTPMethodGET;
                } else {
                    request.parameters = posted_;
                }
            },
            {.onFinished = [done = std::move(done)](const request::Response& response, const request::Failure& failure) {
                done(response && !failure);
            }});
    }

protected:
    RequestCenter(std::string url, const request::RequestEnvironment& environment)
        : url_(std::move(url)),
          queue_(environment.completionQueue),
          center_(request::XMCenter::center(environment, std::make_shared<request::XMEngine>(environment))) {}

private:
    static request::RequestEnvironment onOneThread() {
        const auto queue = std::make_shared<HttpQueue>();
        return {.transport = std::make_shared<linux_http::CurlTransport>(), .completionQueue = queue, .backgroundQueue = queue};
    }

    const std::string url_;
    const util::Dictionary posted_ = *util::Json::decode(postedJson())->dictionary();
    const std::shared_ptr<platform::DispatchQueue> queue_;
    std::shared_ptr<request::XMCenter> center_;
};

/// The same as programs get it from the factory: results on a pool of threads.
class RequestLayerCenter final : public RequestCenter {
public:
    explicit RequestLayerCenter(std::string url)
        : RequestCenter(std::move(url), request::RequestLayer::makeEnvironment({.programName = "bench/1.0", .languages = {"en"}})) {}
};

}  // namespace halvane::bench
