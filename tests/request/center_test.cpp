#include "request/RequestStory.h"

namespace halvane::request {
namespace {

using namespace std::chrono_literals;
using util::Dictionary;
using util::UrlError;

class CenterTest : public RequestStory {};

util::Error businessError(int code) { return {"company", code, "refused", std::nullopt}; }

TEST_F(CenterTest, a_fresh_request_is_a_form_post_that_expects_json) {
    const auto request = XMRequest::request();
    request->url = "http://h/p";
    request->parameters = Dictionary{{"a", 1}};
    engine->sendRequest(request, [](const auto&, const auto&) {});
    EXPECT_EQ(sent(0).request.method, "POST");
    EXPECT_EQ(sent(0).request.body, "a=1");
    EXPECT_EQ(*sent(0).request.headers.find("Content-Type"), "application/x-www-form-urlencoded");
    EXPECT_EQ(sent(0).request.timeout, 60s);
    EXPECT_TRUE(request->useGeneralServer && request->useGeneralHeaders && request->useGeneralParameters);
    EXPECT_EQ(request->retryCount, 0U);
    EXPECT_TRUE(request->uploadFormDatas.empty());
}

TEST_F(CenterTest, general_values_lie_under_the_requests_own) {
    center->setupConfig([](XMConfig& config) {
        config.generalParameters = {{"a", 1}, {"b", 2}};
        config.generalHeaders = {{"X-A", "1"}, {"X-B", "2"}};
        config.generalUserInfo = Dictionary{{"who", "general"}};
    });
    struct Row {
        const char* name;
        bool general;
        std::optional<Dictionary> parameters;
        const char* body;
        const char* headers;
    };
    const Row rows[] = {{"merged", true, Dictionary{{"b", 3}}, "a=1&b=3", "X-A: 1, X-B: 3"},
                        {"none of its own", true, std::nullopt, "a=1&b=2", "X-A: 1, X-B: 3"},
                        {"alone", false, Dictionary{{"b", 3}}, "b=3", "X-B: 3"},
                        {"alone and nothing", false, std::nullopt, "", "X-B: 3"}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        center->sendRequest([&](XMRequest& request) {
            request.url = "http://h/p";
            request.useGeneralParameters = request.useGeneralHeaders = row.general;
            request.parameters = row.parameters;
            request.headers.set("x-b", "3");
        });
        const auto& made = transport->exchanges.back()->request;
        EXPECT_EQ(made.body, row.body);
        std::string headers = made.headers.find("X-A") != nullptr ? "X-A: " + *made.headers.find("X-A") + ", " : "";
        EXPECT_EQ(headers + "X-B: " + *made.headers.find("X-B"), row.headers);
    }
    const auto request = std::get<std::shared_ptr<XMRequest>>(center->getRequest("+1"));
    EXPECT_EQ(request->userInfo, (Dictionary{{"who", "general"}}));
    EXPECT_EQ(request->parameters, (Dictionary{{"a", 1}, {"b", 3}}));
}

TEST_F(CenterTest, addresses_are_computed_from_server_and_api) {
    struct Row {
        const char* name;
        std::optional<std::string> url, server, api;
        bool useGeneral;
        std::optional<std::string> expected;
    };
    const Row rows[] = {
        {"own url wins", "http://own/u", "http://s/a", "b", true, "http://own/u"},
        {"general server", {}, {}, "b", true, "http://general/root/b"},
        {"general server, empty own", "", "", "b", true, "http://general/root/b"},
        {"general server forbidden", {}, {}, "b", false, "b"},
        {"own server", {}, "http://s", "b", true, "http://s/b"},
        {"own server with path", {}, "http://s/a", "b", true, "http://s/a/b"},
        {"own server with slash", {}, "http://s/a/", "b", true, "http://s/a/b"},
        {"api from the root", {}, "http://s/a", "/b", true, "http://s/b"},
        {"api with a query", {}, "http://s/a", "b?x=1", true, "http://s/a/b?x=1"},
        {"server's query goes", {}, "http://s/a?q=1", "b", true, "http://s/a/b"},
        {"text that ends in a slash", {}, "http://s/a?q=/", "b", true, "http://s/b"},
        {"api elsewhere", {}, "http://s/a", "https://t/c", true, "https://t/c"},
        {"no api", {}, "http://s/a", {}, true, "http://s/a"},
        {"no api, general server", {}, {}, "", true, "http://general/root"},
        {"api that is no reference", {}, "http://s/a", "b c", true, std::nullopt},
        {"server that is none", {}, "s", "b", true, std::nullopt},
        {"nothing at all", {}, {}, {}, false, std::nullopt},
    };
    center->setupConfig([](XMConfig& config) { config.generalServer = "http://general/root"; });
    center->setRequestProcessBlock([this](XMRequest& request) { events.push_back(request.url.value_or("absent")); });
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const auto identifier = center->sendRequest([&](XMRequest& request) {
            request.url = row.url;
            request.server = row.server;
            request.api = row.api;
            request.useGeneralServer = row.useGeneral;
        });
        EXPECT_EQ(heard(), Events{row.expected.value_or("absent")});
        EXPECT_EQ(identifier.has_value(), row.expected && row.expected->starts_with("http"));
    }
}

TEST_F(CenterTest, a_configuration_adds_and_replaces_but_clears_nothing) {
    center->setupConfig([this](XMConfig& config) {
        EXPECT_FALSE(config.consoleLog);
        config.consoleLog = true;
        config.generalServer = "http://first";
        config.generalParameters = {{"a", 1}, {"b", 1}};
        config.generalHeaders = {{"X", "1"}};
        config.callbackQueue = background;
    });
    center->setupConfig([](XMConfig& config) {
        config.generalParameters = {{"b", 2}};
        config.generalHeaders = {{"Y", "2"}};
    });
    auto now = center->settings();
    EXPECT_FALSE(now->consoleLog);
    EXPECT_EQ(now->generalServer, "http://first");
    EXPECT_EQ(now->generalParameters, (Dictionary{{"a", 1}, {"b", 2}}));
    EXPECT_EQ(now->generalHeaders.fields().size(), 2U);
    EXPECT_EQ(now->callbackQueue, background);
    EXPECT_EQ(now->engine, engine);
    center->setGeneralHeaderValue("3", "X");
    center->setGeneralHeaderValue(std::nullopt, "y");
    center->setGeneralParameterValue(std::nullopt, "b");
    center->setGeneralParameterValue(util::Value(), "c");
    now = center->settings();
    EXPECT_EQ(now->generalHeaders.fields(), (std::vector<platform::HttpHeaders::Field>{{"X", "3"}}));
    EXPECT_EQ(now->generalParameters, (Dictionary{{"a", 1}, {"c", nullptr}}));
}

TEST_F(CenterTest, results_come_in_order_and_then_the_callbacks_go) {
    center->sendRequest(to("http://h/good"), logging("good"));
    const auto good = std::get<std::shared_ptr<XMRequest>>(center->getRequest("+1"));
    center->sendRequest(to("http://h/bad"), logging("bad"));
    transport->replyJson(0, "{\"a\":1}");
    transport->reply(1, 500, "application/json", "{}");
    EXPECT_EQ(heard(), (Events{"good success {\"a\":1}", "good finished {\"a\":1} -", "bad failure -1011", "bad finished - -1011"}));
    EXPECT_FALSE(good->successBlock() || good->failureBlock() || good->finishedBlock() || good->progressBlock());
}

TEST_F(CenterTest, a_callback_may_clear_those_after_it) {
    std::shared_ptr<XMRequest> request;
    center->sendRequest(to("http://h/p"), {.onSuccess = [&](const Response&) { request->cleanCallbackBlocks(); },
                                           .onFinished = [this](const auto&, const auto&) { events.push_back("finished"); }});
    request = std::get<std::shared_ptr<XMRequest>>(center->getRequest("+1"));
    transport->replyJson(0, "1");
    EXPECT_EQ(heard(), Events());
}

TEST_F(CenterTest, with_a_callback_queue_results_are_told_there) {
    const auto main = std::make_shared<test::ManualMainLoop>();
    center->setupConfig([&](XMConfig& config) { config.callbackQueue = main; });
    center->sendRequest(to("http://h/1"), logging());
    center->sendRequest(to("http://h/2"), logging());
    transport->replyJson(0, "1");
    transport->fail(1, UrlError::TimedOut);
    EXPECT_EQ(heard(), Events());
    main->runPending();
    EXPECT_EQ(heard(), (Events{"success 1", "finished 1 -", "failure -1001", "finished - -1001"}));
}

TEST_F(CenterTest, progress_is_told_of_uploads_and_downloads_only) {
    for (const auto type : {XMRequestNormal, XMRequestUpload, XMRequestDownload}) {
        center->sendRequest(
            [type](XMRequest& request) {
                request.url = "http://h/p";
                request.requestType = type;
            },
            logging());
    }
    EXPECT_FALSE(sent(0).data.onUploadProgress || sent(0).data.onDownloadProgress);
    ASSERT_TRUE(sent(1).data.onUploadProgress && sent(2).download.onProgress);
    EXPECT_FALSE(std::get<std::shared_ptr<XMRequest>>(center->getRequest("+1"))->progressBlock());
    sent(1).data.onUploadProgress({1, 2});
    sent(2).download.onProgress({3, 4});
    EXPECT_EQ(heard(), (Events{"progress 1", "progress 3"}));
}

TEST_F(CenterTest, the_response_hook_replaces_or_refuses) {
    center->setupConfig([](XMConfig& config) { config.consoleLog = true; });
    center->setResponseProcessBlock([](XMRequest&, const Response& response, Failure& failure) -> Response {
        const auto code = util::integerOf(util::member(response->value(), "code"));
        if (code == 1) return ResponseObject(util::Value("replaced"));
        if (code == 2) failure = businessError(42);
        return std::nullopt;
    });
    for (int code = 0; code < 3; ++code) {
        center->sendRequest(to("http://h/p"), logging());
        transport->replyJson(sentCount() - 1, "{\"code\":" + std::to_string(code) + "}");
    }
    EXPECT_EQ(heard(), (Events{"success {\"code\":0}", "finished {\"code\":0} -", "success \"replaced\"", "finished \"replaced\" -",
                               "failure 42", "finished - 42"}));
    EXPECT_EQ(log->lines().size(), 6U);
    EXPECT_NE(log->lines()[3].find("response data: \n\"replaced\"\n"), std::string::npos) << "the log shows what the caller gets";
    EXPECT_NE(log->lines()[5].find("XMResponse Error"), std::string::npos) << "and no success of a refused one";
}

TEST_F(CenterTest, the_error_hook_comes_after_the_log_and_may_replace_or_clear) {
    center->setupConfig([](XMConfig& config) { config.consoleLog = true; });
    center->setErrorProcessBlock([this](XMRequest& request, Failure& failure) {
        EXPECT_TRUE(log->lines().back().find("halvane.url -1001") != std::string::npos);
        failure = request.url == "http://h/clear" ? Failure() : businessError(7);
    });
    center->sendRequest(to("http://h/replace"), logging());
    center->sendRequest(to("http://h/clear"), logging());
    transport->fail(0, UrlError::TimedOut);
    transport->fail(1, UrlError::TimedOut);
    EXPECT_EQ(heard(), (Events{"failure 7", "finished - 7", "failure -", "finished - -"}));
}

TEST_F(CenterTest, a_failed_request_is_sent_again_two_seconds_later) {
    int prepared = 0;
    center->setupConfig([](XMConfig& config) { config.consoleLog = true; });
    center->setRequestProcessBlock([&](XMRequest&) { ++prepared; });
    const auto identifier = center->sendRequest(
        [](XMRequest& request) {
            request.url = "http://h/p";
            request.retryCount = 2;
        },
        logging());
    EXPECT_EQ(identifier, "+1");
    const auto request = std::get<std::shared_ptr<XMRequest>>(center->getRequest(identifier));
    for (std::size_t attempt = 0; attempt < 3; ++attempt) {
        ASSERT_EQ(sentCount(), attempt + 1);
        EXPECT_EQ(request->identifier(), "+" + std::to_string(attempt + 1));
        EXPECT_EQ(heard(), Events());
        transport->fail(attempt, UrlError::CannotConnect);
        background->advance(1999ms);
        EXPECT_EQ(sentCount(), attempt + 1);
        background->advance(1ms);
    }
    EXPECT_EQ(sentCount(), 3U);
    EXPECT_EQ(heard(), (Events{"failure -1004", "finished - -1004"}));
    EXPECT_EQ(prepared, 1);
    EXPECT_EQ(log->lines().size(), 6U) << "each attempt and its failure";
}

TEST_F(CenterTest, cancelling_is_told_at_once_and_the_end_comes_by_the_transport) {
    const auto onCancel = [this](const XMCenter::Running& cancelled) {
        const auto* request = std::get_if<std::shared_ptr<XMRequest>>(&cancelled);
        events.push_back(request != nullptr ? "cancel " + (*request)->url.value() : "cancel nothing");
    };
    center->sendRequest(to("http://h/once"), logging());
    center->sendRequest(
        [](XMRequest& request) {
            request.url = "http://h/again";
            request.retryCount = 1;
        },
        logging());
    for (const char* identifier : {"", "+9", "-1", "BC1", "x1", "+"}) center->cancelRequest(identifier, onCancel);
    center->cancelRequest(std::nullopt, onCancel);
    EXPECT_EQ(heard(), Events(7, "cancel nothing"));
    center->cancelRequest("+1", onCancel);
    EXPECT_EQ(heard(), (Events{"failure -999", "finished - -999", "cancel http://h/once"}));
    center->cancelRequest("+2", onCancel);
    background->advance(2s);
    ASSERT_EQ(sentCount(), 3U) << "a cancelled one with attempts left is sent again";
    transport->replyJson(2, "1");
    EXPECT_EQ(heard(), (Events{"cancel http://h/again", "success 1", "finished 1 -"}));
    EXPECT_EQ(center->getRequest("+1").index(), 0U);
}

TEST_F(CenterTest, what_cannot_be_built_is_told_later_and_what_is_unknown_never) {
    struct Row {
        const char* name;
        std::function<void(XMRequest&)> spoil;
        Events expected;
    };
    const Events badUrl{"failure -1000", "finished - -1000"};
    const Events unknown{"failure -1", "finished - -1"};
    const Row rows[] = {
        {"no address", [](auto& r) { r.url.reset(); }, badUrl},
        {"malformed", [](auto& r) { r.url = "http://h/a b"; }, badUrl},
        {"upload, malformed", [](auto& r) { r.url = "nowhere", r.requestType = XMRequestUpload; }, badUrl},
        {"download, malformed", [](auto& r) { r.url = "file:///x", r.requestType = XMRequestDownload; }, badUrl},
        {"method 6", [](auto& r) { r.httpMethod = static_cast<XMHTTPMethod>(6); }, unknown},
        {"method -1", [](auto& r) { r.httpMethod = static_cast<XMHTTPMethod>(-1); }, unknown},
        {"serializer 3", [](auto& r) { r.requestSerializerType = static_cast<XMRequestSerializerType>(3); }, unknown},
        {"null in a property list",
         [](auto& r) {
             r.requestSerializerType = XMRequestSerializerPlist, r.parameters = Dictionary{{"a", nullptr}};
         },
         {"failure 1", "finished - 1"}},
        {"type 3", [](auto& r) { r.requestType = static_cast<XMRequestType>(3); }, {}},
        {"type -1", [](auto& r) { r.requestType = static_cast<XMRequestType>(-1); }, {}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const auto identifier = center->sendRequest(
            [&](XMRequest& request) {
                request.url = "http://h/p";
                row.spoil(request);
            },
            logging());
        EXPECT_EQ(identifier, std::nullopt);
        EXPECT_TRUE(events.empty()) << "not inside the call";
        EXPECT_EQ(heard(), row.expected);
    }
    EXPECT_EQ(sentCount(), 0U);
}

TEST_F(CenterTest, a_destroyed_center_tells_nobody_and_keeps_nothing) {
    const auto main = std::make_shared<test::ManualMainLoop>();
    auto held = std::make_shared<int>(1);
    const auto holding = [this, held] {
        return XMCallbacks{.onFinished = [this, held](const auto&, const auto&) { events.push_back("heard"); }};
    };
    center->sendRequest(to("http://h/running"), holding());
    center->sendRequest(
        [](XMRequest& request) {
            request.url = "http://h/waits";
            request.retryCount = 1;
        },
        holding());
    transport->fail(1, UrlError::TimedOut);
    center->setupConfig([&](XMConfig& config) { config.callbackQueue = main; });
    center->sendRequest(to("http://h/posted"), holding());
    transport->replyJson(2, "1");
    center.reset();
    transport->replyJson(0, "1");
    background->advance(2s);
    main->runPending();
    EXPECT_EQ(heard(), Events());
    EXPECT_EQ(sentCount(), 3U);
    transport->exchanges.clear();
    EXPECT_EQ(held.use_count(), 2) << "held here and by the maker of callbacks";
}

TEST_F(CenterTest, a_destroyed_engine_cancels_and_says_so) {
    center->sendRequest(to("http://h/p"), logging());
    center->setupConfig([this](XMConfig& config) { config.engine = std::make_shared<XMEngine>(environment()); });
    engine.reset();
    EXPECT_EQ(heard(), (Events{"failure -999", "finished - -999"}));
}

TEST_F(CenterTest, the_network_counts_as_reachable_until_it_is_known_not_to_be) {
    using platform::ReachabilityStatus;
    EXPECT_TRUE(center->isNetworkReachable());
    EXPECT_EQ(center->networkConnectionType(), ReachabilityStatus::Unknown);
    reachability->current = ReachabilityStatus::NotReachable;
    EXPECT_FALSE(center->isNetworkReachable());
    reachability->current = ReachabilityStatus::WideAreaNetwork;
    EXPECT_TRUE(center->isNetworkReachable());
    EXPECT_EQ(reachability->starts, 0) << "only the start of the program starts the monitor";
    XMEngine::load(*reachability);
    EXPECT_EQ(reachability->starts, 1);
    RequestEnvironment without = environment();
    without.reachability = nullptr;
    EXPECT_EQ(XMEngine(without).reachabilityStatus(), ReachabilityStatus::Unknown);
}

}  // namespace
}  // namespace halvane::request
