#include "request/LiveRequests.h"
#include "request/factory/RequestLayer.h"
#include "support/Eventually.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <thread>

namespace halvane::request {
namespace {

using test::LoopbackServer;

class Storm : public LiveRequests {};

TEST_F(Storm, ten_thousand_requests_of_eight_threads_each_end_exactly_once) {
    constexpr int kThreads = 8;
    constexpr int kEach = 1250;
    LoopbackServer server(LoopbackServer::replying(test::okReply("[1]", "Content-Type: application/json\r\n")));
    std::vector<std::atomic<int>> ends(kThreads * kEach);
    std::atomic<int> succeeded{0};
    std::atomic<int> cancelled{0};
    std::atomic<int> others{0};
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&, thread] {
            for (int i = 0; i < kEach; ++i) {
                const int number = thread * kEach + i;
                const auto identifier = center->sendRequest(
                    [&](XMRequest& request) {
                        request.url = number % 50 == 7 ? "no address" : server.url("/" + std::to_string(number));
                        request.httpMethod = number % 2 == 0 ? XMHTTPMethodGET : XMHTTPMethodPOST;
                        request.parameters = util::Dictionary{{"n", number}};
                    },
                    {.onSuccess = [&](const Response&) { ++succeeded; },
                     .onFailure =
                         [&](const Failure& failure) {
                             ++(failure->code == static_cast<int>(util::UrlError::Cancelled) ? cancelled : others);
                         },
                     .onFinished = [&ends, number](const Response&, const Failure&) { ++ends[static_cast<std::size_t>(number)]; }});
                EXPECT_EQ(identifier.has_value(), number % 50 != 7);
                if (i % 5 == 3) center->cancelRequest(identifier);
                if (i % 7 == 4) (void)center->getRequest(identifier);
                if (i % 100 == 50) center->setGeneralHeaderValue(std::to_string(i), "X-Thread-" + std::to_string(thread));
            }
        });
    }
    for (auto& thread : threads) thread.join();
    ASSERT_TRUE(test::eventually([&] { return succeeded + cancelled + others == kThreads * kEach; }, std::chrono::seconds(100)))
        << succeeded << " succeeded, " << cancelled << " were cancelled, " << others << " failed otherwise";
    TearDown();  // whatever would still come has come
    EXPECT_TRUE(std::ranges::all_of(ends, [](const auto& count) { return count == 1; }));
    EXPECT_EQ(others, kThreads * kEach / 50) << "those without an address";
    EXPECT_GT(cancelled, 0);
    std::printf("  10,000 requests from %d threads: %d succeeded, %d cancelled, %d had no address; each ended once\n", kThreads,
                succeeded.load(), cancelled.load(), others.load());
}

TEST_F(Storm, an_engine_that_takes_its_queues_along_still_tells_every_end) {
    constexpr int kRequests = 2000;
    LoopbackServer silent([](test::LoopbackConnection& connection) { connection.stall(); });
    std::atomic<int> cancelled{0};
    auto own = std::make_shared<XMEngine>(RequestLayer::makeEnvironment({.programName = "storm/1.0"}));
    for (int i = 0; i < kRequests; ++i) {
        auto request = XMRequest::request();
        request->url = silent.url();
        own->sendRequest(request, [&cancelled](const Response&, const Failure& failure) {
            cancelled += failure && failure->code == static_cast<int>(util::UrlError::Cancelled) ? 1 : 0;
        });
    }
    own.reset();
    EXPECT_TRUE(test::eventually([&] { return cancelled == kRequests; })) << cancelled;
}

TEST_F(Storm, batches_and_chains_of_many_threads_report_exactly_once) {
    constexpr int kThreads = 8;
    constexpr int kEach = 25;
    LoopbackServer server(LoopbackServer::replying(test::okReply("[1]", "Content-Type: application/json\r\n")));
    std::atomic<int> reports{0};
    std::atomic<int> finished{0};
    const XMGroupCallbacks counting{.onSuccess = [&](const XMResults&) { ++reports; },
                                    .onFailure = [&](const XMResults&) { ++reports; },
                                    .onFinished = [&](const auto&, const auto&) { ++finished; }};
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&] {
            for (int i = 0; i < kEach; ++i) {
                const auto batch = center->sendBatchRequest(
                    [&](XMBatchRequest& made) {
                        for (int member = 0; member < 5; ++member) {
                            made.requestArray.push_back(XMRequest::request());
                            made.requestArray.back()->url = server.url();
                        }
                    },
                    counting);
                const auto chain = center->sendChainRequest(
                    [&](XMChainRequest& made) {
                        made.onFirst([&](XMRequest& request) { request.url = server.url("/1"); })
                            .onNext([&](XMRequest& request, const Response&, bool&) { request.url = server.url("/2"); });
                    },
                    counting);
                if (i % 3 == 0) center->cancelRequest(batch);
                if (i % 3 == 1) center->cancelRequest(chain);
            }
        });
    }
    for (auto& thread : threads) thread.join();
    ASSERT_TRUE(test::eventually([&] { return finished == 2 * kThreads * kEach; }, std::chrono::seconds(100))) << finished;
    EXPECT_EQ(center->getRequest("BC1").index(), 0U);
    TearDown();
    EXPECT_EQ(reports, 2 * kThreads * kEach);
    EXPECT_EQ(finished, 2 * kThreads * kEach);
}

}  // namespace
}  // namespace halvane::request
