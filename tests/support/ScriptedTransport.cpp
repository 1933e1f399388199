#include "support/ScriptedTransport.h"

#include <utility>

namespace halvane::test {

namespace {

using Exchange = ScriptedTransport::Exchange;

void finish(Exchange& exchange, std::optional<platform::HttpResponse> response, const util::Bytes& body, std::optional<util::Error> error) {
    if (std::exchange(exchange.completed, true)) return;
    if (exchange.data.onCompletion) exchange.data.onCompletion({std::move(response), body, std::move(error)});
}

class ScriptedTask final : public platform::HttpTask {
public:
    ScriptedTask(std::shared_ptr<Exchange> exchange, unsigned long identifier) : exchange_(std::move(exchange)), identifier_(identifier) {}
    unsigned long taskIdentifier() const override { return identifier_; }
    void resume() override { exchange_->resumed = true; }
    void cancel() override {
        const auto error = util::urlError(util::UrlError::Cancelled, "cancelled");
        if (exchange_->isDownload) {
            if (!std::exchange(exchange_->completed, true) && exchange_->download.onCompletion)
                exchange_->download.onCompletion({{}, {}, error});
        } else {
            finish(*exchange_, {}, {}, error);
        }
    }
    [[nodiscard]] bool completed() const { return exchange_->completed; }

private:
    std::shared_ptr<Exchange> exchange_;
    unsigned long identifier_;
};

}  // namespace

class ScriptedSession final : public platform::HttpSession {
public:
    ScriptedSession(ScriptedTransport& transport, std::size_t number) : transport_(transport), number_(number) {}

    std::shared_ptr<platform::HttpTask> dataTask(platform::HttpRequest request, platform::HttpDataHandlers handlers) override {
        auto exchange = std::make_shared<Exchange>();
        exchange->request = std::move(request);
        exchange->data = std::move(handlers);
        return add(std::move(exchange));
    }
    std::shared_ptr<platform::HttpTask> downloadTask(platform::HttpRequest request, platform::HttpDownloadHandlers handlers) override {
        auto exchange = std::make_shared<Exchange>();
        exchange->request = std::move(request);
        exchange->download = std::move(handlers);
        exchange->isDownload = true;
        return add(std::move(exchange));
    }
    std::vector<std::shared_ptr<platform::HttpTask>> tasks() const override {
        std::vector<std::shared_ptr<platform::HttpTask>> open;
        for (const auto& task : tasks_) {
            if (!task->completed()) open.push_back(task);
        }
        return open;
    }
    void setMaximumConcurrentTasks(int /*count*/) override {}
    void invalidateCancelingTasks() override {
        for (const auto& task : tasks()) task->cancel();
    }

private:
    std::shared_ptr<platform::HttpTask> add(std::shared_ptr<Exchange> exchange) {
        exchange->session = number_;
        transport_.exchanges.push_back(exchange);
        tasks_.push_back(std::make_shared<ScriptedTask>(std::move(exchange), tasks_.size() + 1));
        return tasks_.back();
    }

    ScriptedTransport& transport_;
    std::size_t number_;
    std::vector<std::shared_ptr<ScriptedTask>> tasks_;
};

std::shared_ptr<platform::HttpSession> ScriptedTransport::makeSession(platform::HttpSessionConfiguration configuration) {
    sessions.push_back(std::move(configuration));
    return std::make_shared<ScriptedSession>(*this, sessions.size() - 1);
}

void ScriptedTransport::reply(std::size_t index, int status, const std::string& contentType, const util::Bytes& body) {
    const auto exchange = exchanges.at(index);
    platform::HttpResponse response{status, exchange->request.url, {}};
    if (!contentType.empty()) response.headers.set("Content-Type", contentType);
    if (!exchange->isDownload) {
        finish(*exchange, response, body, std::nullopt);
        return;
    }
    if (std::exchange(exchange->completed, true)) return;
    if (!response.isSuccess()) {
        exchange->download.onCompletion(
            {response, {}, util::urlError(util::UrlError::BadServerResponse, "status " + std::to_string(status))});
        return;
    }
    if (exchange->download.onProgress) exchange->download.onProgress({body.size(), body.size()});
    const auto file = exchange->download.destination(response);
    if (writeFile) writeFile(file, body);
    exchange->download.onCompletion({response, file, std::nullopt});
}

void ScriptedTransport::fail(std::size_t index, util::UrlError code, const std::string& description) {
    const auto exchange = exchanges.at(index);
    const auto error = util::urlError(code, description);
    if (exchange->isDownload) {
        if (!std::exchange(exchange->completed, true)) exchange->download.onCompletion({{}, {}, error});
    } else {
        finish(*exchange, {}, {}, error);
    }
}

}  // namespace halvane::test
