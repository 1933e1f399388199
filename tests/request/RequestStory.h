#pragma once

#include "request/XMCenter.h"
#include "request/XMEngine.h"
#include "support/FakeReachability.h"
#include "support/ManualMainLoop.h"
#include "support/RecordingLog.h"
#include "support/ScriptedTransport.h"
#include "util/Json.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace halvane::request {

/// "{"a":1}", "bytes x", "<a>", "file /x", "-" for absent.
inline std::string shown(const Response& response) {
    if (!response) return "-";
    if (const auto* file = response->file()) return "file " + file->string();
    if (const auto* root = response->xml()) return "<" + root->name + ">";
    if (const auto* bytes = response->bytes()) return "bytes " + *bytes;
    return util::Json::encode(*response->value());
}
inline std::string shown(const Failure& failure) { return failure ? std::to_string(failure->code) : "-"; }
inline std::string shown(const XMResults& results) {
    std::string all;
    for (const XMResult& result : results) {
        if (!all.empty()) all += ' ';
        if (const auto* object = std::get_if<ResponseObject>(&result)) {
            all += shown(Response(*object));
        } else if (const auto* error = std::get_if<util::Error>(&result)) {
            all += std::to_string(error->code);
        } else {
            all += "null";
        }
    }
    return "[" + all + "]";
}
inline std::string shown(const std::optional<XMResults>& results) { return results ? shown(*results) : "-"; }

/// A center and its engine on a transport without network; queues run when told. What callbacks hear stands in `events`.
class RequestStory : public testing::Test {
protected:
    [[nodiscard]] RequestEnvironment environment() const {
        return {.transport = transport,
                .completionQueue = completion,
                .backgroundQueue = background,
                .reachability = reachability,
                .log = log,
                .defaultHeaders = {{"User-Agent", "test"}}};
    }

    [[nodiscard]] XMCallbacks logging(const std::string& name = "") {
        return {.onProgress = [this, name](const auto& progress) { add(name, "progress " + std::to_string(progress.completed)); },
                .onSuccess = [this, name](const auto& response) { add(name, "success " + shown(response)); },
                .onFailure = [this, name](const auto& failure) { add(name, "failure " + shown(failure)); },
                .onFinished = [this, name](const auto& response,
                                           const auto& failure) { add(name, "finished " + shown(response) + " " + shown(failure)); }};
    }
    [[nodiscard]] XMGroupCallbacks loggingGroup() {
        return {.onSuccess = [this](const auto& results) { add("", "success " + shown(results)); },
                .onFailure = [this](const auto& results) { add("", "failure " + shown(results)); },
                .onFinished = [this](const auto& good, const auto& bad) { add("", "finished " + shown(good) + " " + shown(bad)); }};
    }
    void add(const std::string& name, const std::string& event) { events.push_back(name.empty() ? event : name + " " + event); }

    /// What has been heard since the last call.
    std::vector<std::string> heard() {
        completion->runPending();
        return std::exchange(events, {});
    }
    [[nodiscard]] const test::ScriptedTransport::Exchange& sent(std::size_t index) const { return *transport->exchanges.at(index); }
    [[nodiscard]] std::size_t sentCount() const { return transport->exchanges.size(); }

    static std::shared_ptr<XMRequest> requestTo(const std::string& url) {
        auto request = XMRequest::request();
        request->url = url;
        return request;
    }
    static XMCenter::RequestBlock to(const std::string& url) {
        return [url](XMRequest& request) { request.url = url; };
    }

    using Events = std::vector<std::string>;

    std::shared_ptr<test::ScriptedTransport> transport = std::make_shared<test::ScriptedTransport>();
    std::shared_ptr<test::ManualMainLoop> completion = std::make_shared<test::ManualMainLoop>();
    std::shared_ptr<test::ManualMainLoop> background = std::make_shared<test::ManualMainLoop>();
    std::shared_ptr<test::FakeReachability> reachability = std::make_shared<test::FakeReachability>();
    std::shared_ptr<test::RecordingLog> log = std::make_shared<test::RecordingLog>();
    Events events;
    std::shared_ptr<XMEngine> engine = std::make_shared<XMEngine>(environment());
    std::shared_ptr<XMCenter> center = XMCenter::center(environment(), engine);
};

}  // namespace halvane::request
