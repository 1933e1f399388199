#pragma once

#include "linux/http/CurlTransport.h"
#include "request/XMCenter.h"
#include "request/XMEngine.h"
#include "support/EventLog.h"
#include "support/Eventually.h"
#include "support/LoopbackServer.h"
#include "support/ManualMainLoop.h"
#include "support/ThreadQueue.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <future>
#include <memory>
#include <string>

namespace halvane::request {

/// A center and its engine on the real transport, results on four threads. Retries wait for `background->advance`.
class LiveRequests : public testing::Test {
protected:
    static void SetUpTestSuite() {
        for (const char* name : {"http_proxy", "https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"}) ::unsetenv(name);
    }
    /// Nothing may run when the members of a test begin to go.
    void TearDown() override {
        center.reset();
        engine.reset();
        // A result that is being told may hold center and queue; a queue's own thread must not be the last to.
        EXPECT_TRUE(test::eventually([this] { return completion.use_count() <= 1; }));
        completion.reset();
    }

    [[nodiscard]] RequestEnvironment environment() const {
        return {.transport = transport, .completionQueue = completion, .backgroundQueue = background};
    }
    void makeEngine() {
        engine = std::make_shared<XMEngine>(environment());
        center = XMCenter::center(environment(), engine);
    }

    struct Ended {
        Response response;
        Failure failure;

        [[nodiscard]] int code() const { return failure ? failure->code : 0; }
        [[nodiscard]] std::string body() const { return response && response->bytes() != nullptr ? *response->bytes() : std::string(); }
    };
    /// Sends it, RAW unless `configure` says otherwise, and waits for the end; one that does not come is a failure of the test.
    Ended send(const std::string& url, const XMCenter::RequestBlock& configure = {}) {
        auto promise = std::make_shared<std::promise<Ended>>();
        auto ended = promise->get_future();
        center->sendRequest(
            [&](XMRequest& request) {
                request.url = url;
                request.responseSerializerType = XMResponseSerializerRAW;
                if (configure) configure(request);
            },
            {.onFinished = [promise](const Response& response, const Failure& failure) {
                promise->set_value({response, failure});
            }});
        if (ended.wait_for(std::chrono::seconds(60)) == std::future_status::ready) return ended.get();
        ADD_FAILURE() << "the request does not end: " << url;
        return {};
    }

    std::shared_ptr<test::ThreadQueue> completion = std::make_shared<test::ThreadQueue>(4);
    std::shared_ptr<test::ManualMainLoop> background = std::make_shared<test::ManualMainLoop>();
    std::shared_ptr<linux_http::CurlTransport> transport = std::make_shared<linux_http::CurlTransport>(1'000'000);
    std::shared_ptr<XMEngine> engine = std::make_shared<XMEngine>(environment());
    std::shared_ptr<XMCenter> center = XMCenter::center(environment(), engine);
};

}  // namespace halvane::request
