#pragma once

#include "HttpContestant.h"
#include "HttpQueue.h"
#include "linux/http/CurlTransport.h"
#include "service/APIClient.h"
#include "session/HDCLUserConfig.h"
#include "support/FakeReachability.h"
#include "support/MemoryDirectories.h"
#include "support/MemoryFileStore.h"
#include "support/MemoryPreferences.h"
#include "util/Json.h"

#include <atomic>
#include <memory>
#include <string>
#include <thread>

namespace halvane::bench {

/// The program's HTTP client as the service operations use it: parameters to JSON, the session's token,
/// the reply judged and decoded. The queue's thread stands for the main thread.
class HttpClient final : public HttpContestant {
public:
    explicit HttpClient(std::string url) : url_(std::move(url)) {
        user_.user_loginSuccessWithDic(util::Dictionary{{"token", std::string(64, 't')}});
    }
    ~HttpClient() override { client_.reset(); }

    void send(HttpExchange exchange, std::function<void(bool)> done) override {
        if (std::this_thread::get_id() == thread_) {
            request(exchange, std::move(done));
            return;
        }
        queue_->async([this, exchange, done = std::move(done)]() mutable {
            thread_ = std::this_thread::get_id();
            request(exchange, std::move(done));
        });
    }

private:
    void request(HttpExchange exchange, std::function<void(bool)> done) {
        const bool isPost = exchange == HttpExchange::Post;
        client_->requestURL(url_, isPost ? 1 : 0, isPost ? std::optional(posted_) : std::nullopt,
                            [done = std::move(done)](int code, const std::optional<util::Value>&, const std::optional<util::Error>&) {
                                done(code == service::APIClient::kSuccess);
                            });
    }

    const std::string url_;
    const util::Dictionary posted_ = *util::Json::decode(postedJson())->dictionary();
    const std::shared_ptr<HttpQueue> queue_ = std::make_shared<HttpQueue>();
    std::atomic<std::thread::id> thread_;
    linux_http::CurlTransport transport_;
    test::MemoryPreferences preferences_;
    test::MemoryFileStore files_;
    test::MemoryDirectories directories_;
    test::FakeReachability reachability_;
    session::HDCLUserConfig user_{preferences_, files_, directories_};
    std::unique_ptr<service::APIClient> client_ = std::make_unique<service::APIClient>(
        service::APIClient::Collaborators{transport_, queue_, user_, directories_, reachability_, "Halvane/1.0", "zh-CN"});
};

}  // namespace halvane::bench
