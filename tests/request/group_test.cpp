#include "request/RequestStory.h"

namespace halvane::request {
namespace {

using namespace std::chrono_literals;
using util::UrlError;

class GroupTest : public RequestStory {
protected:
    /// One member for each of `urls`.
    static XMCenter::BatchBlock members(const std::vector<std::string>& urls) {
        return [urls](XMBatchRequest& batch) {
            for (const auto& url : urls) batch.requestArray.push_back(requestTo(url));
        };
    }
    /// A first request and `further` ones, each logging what it was made of.
    XMCenter::ChainBlock steps(int further) {
        return [this, further](XMChainRequest& chain) {
            chain.onFirst([](XMRequest& request) { request.url = "http://h/0"; });
            for (int step = 1; step <= further; ++step) {
                chain.onNext([this, step](XMRequest& request, const Response& previous, bool& send) {
                    EXPECT_TRUE(send);
                    events.push_back("step " + std::to_string(step) + " " + shown(previous));
                    request.url = "http://h/" + std::to_string(step);
                });
            }
        };
    }
    static std::shared_ptr<XMBatchRequest> batchOf(const XMCenter::Running& running) {
        const auto* batch = std::get_if<std::shared_ptr<XMBatchRequest>>(&running);
        return batch == nullptr ? nullptr : *batch;
    }
};

TEST_F(GroupTest, a_batch_reports_once_when_all_have_ended_in_the_order_of_its_members) {
    EXPECT_EQ(center->sendBatchRequest(members({"http://h/0", "http://h/1", "http://h/2"}), loggingGroup()), "BC1");
    ASSERT_EQ(sentCount(), 3U);
    transport->replyJson(2, "2");
    transport->replyJson(0, "0");
    EXPECT_EQ(heard(), Events());
    EXPECT_NE(batchOf(center->getRequest("BC1")), nullptr);
    transport->replyJson(1, "1");
    EXPECT_EQ(heard(), (Events{"success [0 1 2]", "finished [0 1 2] -"}));
    EXPECT_EQ(center->getRequest("BC1").index(), 0U);
}

TEST_F(GroupTest, a_failed_member_stops_no_other_but_fails_the_batch) {
    center->sendBatchRequest(members({"http://h/0", "nowhere", "http://h/2"}), loggingGroup());
    EXPECT_EQ(heard(), Events());
    transport->replyJson(0, "0");
    transport->reply(1, 200, "application/json", "");
    EXPECT_EQ(heard(), (Events{"failure [0 -1000 null]", "finished - [0 -1000 null]"})) << "no response is a failure without an error";
}

TEST_F(GroupTest, an_absent_response_is_a_failure_without_an_error) {
    center->sendBatchRequest(members({"http://h/0"}), loggingGroup());
    center->sendChainRequest(steps(1), loggingGroup());
    for (std::size_t i = 0; i < 2; ++i) transport->reply(i, 200, "application/json", "");
    EXPECT_EQ(heard(), (Events{"failure [null]", "finished - [null]", "failure [null null]", "finished - [null null]"}));
}

TEST_F(GroupTest, members_and_steps_are_prepared_and_retried_like_single_requests) {
    center->setupConfig([](XMConfig& config) { config.generalServer = "http://general"; });
    center->sendBatchRequest(
        [](XMBatchRequest& batch) {
            batch.requestArray.push_back(XMRequest::request());
            batch.requestArray.back()->api = "member";
            batch.requestArray.back()->retryCount = 1;
        },
        loggingGroup());
    EXPECT_EQ(sent(0).request.url, "http://general/member");
    transport->fail(0, UrlError::TimedOut);
    EXPECT_EQ(heard(), Events());
    background->advance(2s);
    transport->replyJson(1, "1");
    EXPECT_EQ(heard(), (Events{"success [1]", "finished [1] -"}));
    center->sendChainRequest([](XMChainRequest& chain) { chain.onFirst([](XMRequest& request) { request.api = "step"; }); },
                             loggingGroup());
    EXPECT_EQ(sent(2).request.url, "http://general/step");
}

TEST_F(GroupTest, what_is_empty_is_refused_and_takes_no_number) {
    EXPECT_EQ(center->sendBatchRequest({}, loggingGroup()), std::nullopt);
    EXPECT_EQ(center->sendBatchRequest([](XMBatchRequest& batch) { batch.requestArray.push_back(nullptr); }, loggingGroup()), std::nullopt);
    EXPECT_EQ(center->sendChainRequest([](XMChainRequest& chain) { chain.onNext({}); }, loggingGroup()), std::nullopt);
    EXPECT_EQ(center->sendChainRequest(steps(0), loggingGroup()), "BC1");
    EXPECT_EQ(center->sendBatchRequest(members({"http://h/b"}), loggingGroup()), "BC2");
    EXPECT_EQ(heard(), Events());
    EXPECT_EQ(sentCount(), 2U);
}

TEST_F(GroupTest, a_chain_makes_each_step_from_the_response_before_it) {
    EXPECT_EQ(center->sendChainRequest(steps(2), loggingGroup()), "BC1");
    for (std::size_t step = 0; step < 3; ++step) {
        ASSERT_EQ(sentCount(), step + 1);
        EXPECT_EQ(sent(step).request.url, "http://h/" + std::to_string(step));
        transport->replyJson(step, std::to_string(step));
    }
    EXPECT_EQ(heard(), (Events{"step 1 0", "step 2 1", "success [0 1 2]", "finished [0 1 2] -"}));
    EXPECT_EQ(center->getRequest("BC1").index(), 0U);
}

TEST_F(GroupTest, a_chain_ends_at_the_first_failure) {
    struct Row {
        const char* name;
        std::size_t failing;
        Events expected;
    };
    const Row rows[] = {{"first", 0, {"failure [-1001 null null]", "finished - [-1001 null null]"}},
                        {"second", 1, {"step 1 0", "failure [0 -1001 null]", "finished - [0 -1001 null]"}},
                        {"last", 2, {"step 1 0", "step 2 1", "failure [0 1 -1001]", "finished - [0 1 -1001]"}}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const std::size_t before = sentCount();
        const auto identifier = center->sendChainRequest(steps(2), loggingGroup());
        for (std::size_t step = 0; step < row.failing; ++step) transport->replyJson(before + step, std::to_string(step));
        transport->fail(before + row.failing, UrlError::TimedOut);
        EXPECT_EQ(heard(), row.expected);
        EXPECT_EQ(sentCount(), before + row.failing + 1) << "no further request";
        EXPECT_EQ(center->getRequest(identifier).index(), 0U);
    }
}

TEST_F(GroupTest, a_step_that_refuses_to_send_fails_the_chain) {
    center->sendChainRequest(
        [](XMChainRequest& chain) {
            chain.onFirst([](XMRequest& request) { request.url = "http://h/0"; })
                .onNext([](XMRequest&, const Response&, bool& send) { send = false; })
                .onNext([](XMRequest&, const Response&, bool&) { FAIL(); });
        },
        loggingGroup());
    transport->replyJson(0, "0");
    EXPECT_EQ(heard(), (Events{"failure [0 null null]", "finished - [0 null null]"}));
    EXPECT_EQ(sentCount(), 1U);
}

TEST_F(GroupTest, a_cancelled_batch_is_gone_at_once_and_reports_when_its_members_have_ended) {
    const auto identifier = center->sendBatchRequest(members({"http://h/0", "http://h/1"}), loggingGroup());
    transport->replyJson(0, "0");
    const auto batch = batchOf(center->getRequest(identifier));
    center->cancelRequest(identifier, [&](const auto& cancelled) {
        EXPECT_EQ(batchOf(cancelled), batch);
        EXPECT_EQ(center->getRequest(identifier).index(), 0U);
        events.push_back("cancelled");
    });
    EXPECT_EQ(heard(), (Events{"failure [0 -999]", "finished - [0 -999]", "cancelled"}));
    center->cancelRequest(identifier, [&](const auto& cancelled) { EXPECT_EQ(cancelled.index(), 0U); });
}

TEST_F(GroupTest, a_batch_cancelled_while_it_is_sent_sends_no_further_member) {
    center->setRequestProcessBlock([this](XMRequest& request) {
        if (request.url == "http://h/1") center->cancelRequest("BC1");
    });
    center->sendBatchRequest(members({"http://h/0", "http://h/1", "http://h/2"}), loggingGroup());
    EXPECT_EQ(sentCount(), 1U) << "the one before it";
    EXPECT_EQ(heard(), (Events{"failure [-999 -999 -999]", "finished - [-999 -999 -999]"}));
}

TEST_F(GroupTest, a_group_cancelled_while_its_task_is_made_is_cancelled_all_the_same) {
    struct CancellingLog final : util::Log {
        void write(std::string_view) override { center->cancelRequest("BC1"); }
        XMCenter* center = nullptr;
    };
    const auto cancelling = std::make_shared<CancellingLog>();
    RequestEnvironment logged = environment();
    logged.log = cancelling;
    center = XMCenter::center(logged, engine);
    cancelling->center = center.get();
    center->setupConfig([](XMConfig& config) { config.consoleLog = true; });
    center->sendBatchRequest(members({"http://h/0", "http://h/1"}), loggingGroup());
    EXPECT_EQ(heard(), (Events{"failure [-999 -999]", "finished - [-999 -999]"}));
    EXPECT_EQ(sentCount(), 1U);
}

TEST_F(GroupTest, a_chain_cancelled_between_its_steps_sends_no_further_one) {
    const auto main = std::make_shared<test::ManualMainLoop>();
    center->setupConfig([&](XMConfig& config) { config.callbackQueue = main; });
    center->sendChainRequest(steps(2), loggingGroup());
    transport->replyJson(0, "0");
    center->cancelRequest("BC1");  // its response waits on the queue
    main->runPending();
    EXPECT_EQ(sentCount(), 1U);
    EXPECT_EQ(heard(), (Events{"step 1 0", "failure [0 -999 null]", "finished - [0 -999 null]"}));

    center->sendChainRequest(steps(1), loggingGroup());
    center->cancelRequest("BC2");
    main->runPending();
    EXPECT_EQ(heard(), (Events{"failure [-999 null]", "finished - [-999 null]"}));
}

TEST_F(GroupTest, callbacks_may_come_back_to_the_center_and_clear_what_calls_them) {
    std::shared_ptr<XMBatchRequest> kept;
    center->sendBatchRequest([&](XMBatchRequest& batch) { batch.requestArray = {requestTo("http://h/0")}; },
                             {.onSuccess = [&](const XMResults&) {
                                 kept = batchOf(center->getRequest("BC1"));
                                 EXPECT_TRUE(kept->batchSuccessBlock() && !kept->batchFinishedBlock());
                                 kept->cleanCallbackBlocks();
                                 center->cancelRequest("BC1");
                                 center->sendRequest(to("http://h/next"));
                                 events.push_back("came back " + shown(kept->responseArray()));
                             }});
    transport->replyJson(0, "0");
    EXPECT_EQ(heard(), Events{"came back [0]"});
    XMChainRequest* chain = nullptr;
    center->sendChainRequest(
        [&](XMChainRequest& made) {
            chain = &made;
            made.onFirst([](XMRequest& request) { request.url = "http://h/0"; }).onNext([&](XMRequest&, const Response&, bool& send) {
                chain->cleanCallbackBlocks();
                center.reset();
                send = false;
            });
        },
        loggingGroup());
    transport->replyJson(2, "0");
    EXPECT_EQ(heard(), Events());
}

TEST_F(GroupTest, clearing_in_a_callback_silences_the_next_and_a_member_may_be_sent_again) {
    const auto member = requestTo("http://h/0");
    std::shared_ptr<XMBatchRequest> first;
    center->sendBatchRequest(
        [&](XMBatchRequest& batch) {
            batch.requestArray = {member, member};
        },
        {.onFailure =
             [&](const XMResults& results) {
                 events.push_back("failure " + shown(results));
                 batchOf(center->getRequest("BC1"))->cleanCallbackBlocks();
                 center->sendBatchRequest([&](XMBatchRequest& batch) { batch.requestArray = {member}; }, loggingGroup());
             },
         .onFinished = [&](const auto&, const auto&) { events.push_back("finished"); }});
    EXPECT_EQ(sentCount(), 1U) << "one that stands there twice counts once";
    transport->fail(0, UrlError::TimedOut);
    EXPECT_EQ(heard(), Events{"failure [-1001]"});
    const auto second = batchOf(center->getRequest("BC2"));
    EXPECT_TRUE(second->batchSuccessBlock());
    transport->replyJson(1, "1");
    EXPECT_EQ(heard(), (Events{"success [1]", "finished [1] -"}));
    EXPECT_FALSE(second->batchSuccessBlock() || second->batchFailureBlock() || second->batchFinishedBlock());
}

TEST_F(GroupTest, what_runs_keeps_no_engine_alive) {
    const std::weak_ptr<XMEngine> last = engine;
    center->sendBatchRequest(members({"http://h/0"}), loggingGroup());
    center->sendChainRequest(steps(1), loggingGroup());
    center.reset();
    engine.reset();
    EXPECT_TRUE(last.expired());
}

TEST_F(GroupTest, a_group_is_cancelled_where_it_runs) {
    const auto other = std::make_shared<XMEngine>(environment());
    center->sendBatchRequest(members({"http://h/0"}), loggingGroup());
    center->setupConfig([&](XMConfig& config) { config.engine = other; });
    center->sendRequest(to("http://h/same-number"), logging("single"));
    center->cancelRequest("BC1");
    EXPECT_EQ(heard(), (Events{"failure [-999]", "finished - [-999]"}));
    EXPECT_NE(center->getRequest("+1").index(), 0U);
}

TEST_F(GroupTest, the_center_may_be_destroyed_while_it_sends) {
    for (int which = 0; which < 4; ++which) {
        auto own = XMCenter::center(environment(), engine);
        switch (which) {
            case 0:
                own->setupConfig([&](XMConfig&) { own.reset(); });
                break;
            case 1:
                own->sendRequest([&](XMRequest& request) { request.url = "http://h/p", own.reset(); }, logging());
                break;
            case 2:
                own->sendBatchRequest([&](XMBatchRequest& batch) { batch.requestArray = {requestTo("http://h/p")}, own.reset(); },
                                      loggingGroup());
                break;
            default:
                own->setRequestProcessBlock([&](XMRequest&) { own.reset(); });
                own->sendChainRequest(steps(1), loggingGroup());
        }
        EXPECT_EQ(own, nullptr);
    }
    for (std::size_t i = 0; i < sentCount(); ++i) transport->replyJson(i, "0");
    EXPECT_EQ(sentCount(), 3U);
    EXPECT_EQ(heard(), Events());
}

TEST_F(GroupTest, nothing_is_kept_of_what_has_ended_or_will_never) {
    auto held = std::make_shared<int>(1);
    const XMGroupCallbacks holding{.onFinished = [held](const auto&, const auto&) {}};
    center->sendBatchRequest(members({"http://h/0"}), holding);
    center->sendChainRequest(steps(1), holding);
    transport->replyJson(0, "0");
    transport->fail(1, UrlError::TimedOut);
    const auto silent = center->sendBatchRequest(
        [](XMBatchRequest& batch) {
            batch.requestArray = {requestTo("http://h/0")};
            batch.requestArray[0]->requestType = static_cast<XMRequestType>(9);
        },
        holding);
    EXPECT_EQ(heard(), Events());
    center->cancelRequest(silent);
    center->sendBatchRequest(
        [](XMBatchRequest& batch) {
            batch.requestArray = {requestTo("http://h/0")};
            batch.requestArray[0]->retryCount = 1;
        },
        holding);
    transport->fail(2, UrlError::TimedOut);
    EXPECT_EQ(background->waiting(), 1U);
    center.reset();
    background->advance(2s);  // as a queue that ends drops it
    transport->exchanges.clear();
    EXPECT_EQ(held.use_count(), 2) << "held here and by the callbacks that were handed in";
}

}  // namespace
}  // namespace halvane::request
