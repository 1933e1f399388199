#pragma once

#include "linux/http/CurlTransport.h"
#include "support/EventLog.h"
#include "support/Gate.h"
#include "support/LoopbackServer.h"
#include "support/ThreadQueue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <future>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace halvane::linux_http {

using test::EventLog;
using test::Gate;

class HttpFixture : public testing::Test {
protected:
    static void SetUpTestSuite() {
        for (const char* name : {"http_proxy", "https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"}) ::unsetenv(name);
    }

    /// Nothing of a session may run when the members of a test begin to go.
    void TearDown() override {
        session.reset();
        queue.reset();
    }

    platform::HttpSession& makeSession(platform::HttpTlsPolicy tls = {}, int limit = 6) {
        session = transport.makeSession({.resultQueue = queue, .maximumConcurrentTasks = limit, .tls = std::move(tls)});
        return *session;
    }

    /// Sends it, on the session made last, and waits for the end. An end that does not come is a failure of the test.
    platform::HttpDataResult send(platform::HttpRequest request) {
        if (!session) makeSession();
        auto promise = std::make_shared<std::promise<platform::HttpDataResult>>();
        auto ended = promise->get_future();
        session->dataTask(std::move(request), {.onCompletion = [promise](auto result) { promise->set_value(std::move(result)); }})
            ->resume();
        return awaited<platform::HttpDataResult>(ended);
    }
    platform::HttpDataResult get(const std::string& url) { return send({.url = url}); }

    platform::HttpDownloadResult download(const std::string& url, const std::filesystem::path& destination) {
        return download(platform::HttpRequest{.url = url}, destination);
    }
    platform::HttpDownloadResult download(platform::HttpRequest request, const std::filesystem::path& destination) {
        if (!session) makeSession();
        auto promise = std::make_shared<std::promise<platform::HttpDownloadResult>>();
        auto ended = promise->get_future();
        session
            ->downloadTask(std::move(request), {.destination = [destination](const auto&) { return destination; },
                                                .onCompletion = [promise](auto result) { promise->set_value(std::move(result)); }})
            ->resume();
        return awaited<platform::HttpDownloadResult>(ended);
    }

    template <typename Result>
    static Result awaited(std::future<Result>& ended) {
        if (ended.wait_for(std::chrono::seconds(60)) != std::future_status::ready) {
            ADD_FAILURE() << "the task does not end";
            return {};
        }
        return ended.get();
    }

    template <typename Result>
    static int codeOf(const Result& result) {
        return result.error ? result.error->code : 0;
    }

    std::shared_ptr<test::ThreadQueue> queue = std::make_shared<test::ThreadQueue>();
    CurlTransport transport;
    std::shared_ptr<platform::HttpSession> session;
};

inline std::string contentsOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// A body from memory, told in pieces; can be made to fail, and to refuse a second time.
class TextStream final : public platform::HttpBodyStream {
public:
    enum class Rewinding { Possible, Impossible };
    explicit TextStream(std::string text, Rewinding rewinding = Rewinding::Possible) : text_(std::move(text)), rewinding_(rewinding) {}

    [[nodiscard]] std::optional<std::uint64_t> length() const override { return announced; }
    std::optional<std::size_t> read(char* buffer, std::size_t capacity) override {
        if (position_ >= failAt) return std::nullopt;
        const std::size_t count = text_.copy(buffer, std::min(capacity, longestPiece), position_);
        position_ += count;
        return count;
    }
    bool rewind() override {
        position_ = 0;
        ++rewinds;
        return rewinding_ == Rewinding::Possible;
    }

    std::optional<std::uint64_t> announced;
    std::size_t longestPiece = 7;
    std::size_t failAt = std::string::npos;
    int rewinds = 0;

private:
    std::string text_;
    Rewinding rewinding_;
    std::size_t position_ = 0;
};

}  // namespace halvane::linux_http
