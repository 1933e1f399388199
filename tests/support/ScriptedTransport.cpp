#include "support/ScriptedTransport.h"

#include <cerrno>
#include <stdexcept>
#include <utility>

namespace halvane::test {

namespace {

using Exchange = ScriptedTransport::Exchange;

/// What came back of one exchange; the file is a download's.
struct Outcome {
    std::optional<platform::HttpResponse> response;
    util::Bytes body;
    std::optional<std::filesystem::path> file;
    std::optional<util::Error> error;
};

void complete(Exchange& exchange, Outcome outcome) {
    if (std::exchange(exchange.completed, true)) return;
    const auto data = std::exchange(exchange.data, {});
    const auto download = std::exchange(exchange.download, {});
    if (data.onCompletion) data.onCompletion({std::move(outcome.response), std::move(outcome.body), std::move(outcome.error)});
    if (download.onCompletion) download.onCompletion({std::move(outcome.response), std::move(outcome.file), std::move(outcome.error)});
}

Exchange& resumed(const std::shared_ptr<Exchange>& exchange) {
    if (!exchange->resumed) throw std::logic_error("a task that was never resumed gets no answer");
    return *exchange;
}

class MemoryBody final : public platform::HttpBodyStream {
public:
    explicit MemoryBody(std::string text) : text_(std::move(text)) {}
    [[nodiscard]] std::optional<std::uint64_t> length() const override { return text_.size(); }
    std::optional<std::size_t> read(char* buffer, std::size_t capacity) override {
        const std::size_t count = text_.copy(buffer, capacity, position_);
        position_ += count;
        return count;
    }
    bool rewind() override {
        position_ = 0;
        return true;
    }

private:
    const std::string text_;
    std::size_t position_ = 0;
};

class ScriptedTask final : public platform::HttpTask {
public:
    ScriptedTask(std::shared_ptr<Exchange> exchange, unsigned long identifier) : exchange_(std::move(exchange)), identifier_(identifier) {}
    unsigned long taskIdentifier() const override { return identifier_; }
    const std::shared_ptr<void>& context() const override { return exchange_->context; }
    void resume() override { exchange_->resumed = true; }
    void cancel() override { complete(*exchange_, {.error = util::urlError(util::UrlError::Cancelled, "cancelled")}); }
    [[nodiscard]] bool completed() const { return exchange_->completed; }

private:
    std::shared_ptr<Exchange> exchange_;
    unsigned long identifier_;
};

}  // namespace

class ScriptedSession final : public platform::HttpSession {
public:
    ScriptedSession(ScriptedTransport& transport, std::size_t number) : transport_(transport), number_(number) {}
    ~ScriptedSession() override { invalidateCancelingTasks(); }

    std::shared_ptr<platform::HttpTask> dataTask(platform::HttpRequest request, platform::HttpDataHandlers handlers,
                                                 std::shared_ptr<void> context) override {
        auto exchange = std::make_shared<Exchange>();
        exchange->context = std::move(context);
        exchange->request = std::move(request);
        exchange->data = std::move(handlers);
        return add(std::move(exchange));
    }
    std::shared_ptr<platform::HttpTask> downloadTask(platform::HttpRequest request, platform::HttpDownloadHandlers handlers,
                                                     std::shared_ptr<void> context) override {
        auto exchange = std::make_shared<Exchange>();
        exchange->context = std::move(context);
        exchange->request = std::move(request);
        exchange->download = std::move(handlers);
        exchange->isDownload = true;
        return add(std::move(exchange));
    }
    std::vector<std::shared_ptr<platform::HttpTask>> tasks() const final {
        std::vector<std::shared_ptr<platform::HttpTask>> open;
        for (const auto& task : tasks_) {
            if (!task->completed()) open.push_back(task);
        }
        return open;
    }
    std::shared_ptr<platform::HttpTask> task(unsigned long taskIdentifier) const override {
        const bool isOpen = taskIdentifier > 0 && taskIdentifier <= tasks_.size() && !tasks_[taskIdentifier - 1]->completed();
        return isOpen ? tasks_[taskIdentifier - 1] : nullptr;
    }
    void setMaximumConcurrentTasks(int /*count*/) override {}
    void invalidateCancelingTasks() final {
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

util::Result<std::shared_ptr<platform::HttpBodyStream>> ScriptedTransport::fileBody(const std::filesystem::path& file) {
    const auto found = files.find(file);
    if (found == files.end()) return util::fileError(ENOENT, "read " + file.string());
    return std::shared_ptr<platform::HttpBodyStream>(std::make_shared<MemoryBody>(found->second));
}

void ScriptedTransport::reply(std::size_t index, platform::HttpResponse response, const util::Bytes& body) {
    const auto exchange = exchanges.at(index);
    if (!resumed(exchange).isDownload) {
        complete(*exchange, {.response = response, .body = body});
        return;
    }
    if (exchange->completed) return;
    if (!response.isSuccess()) {
        const auto error = util::urlError(util::UrlError::BadServerResponse, "status " + std::to_string(response.status));
        complete(*exchange, {.response = response, .error = error});
        return;
    }
    if (exchange->download.onProgress) exchange->download.onProgress({body.size(), body.size()});
    const auto file = exchange->download.destination(response);
    if (writeFile) writeFile(file, body);
    complete(*exchange, {.response = response, .file = file});
}

void ScriptedTransport::reply(std::size_t index, int status, const std::string& contentType, const util::Bytes& body) {
    platform::HttpResponse response{status, exchanges.at(index)->request.url, {}};
    if (!contentType.empty()) response.headers.set("Content-Type", contentType);
    reply(index, std::move(response), body);
}

void ScriptedTransport::fail(std::size_t index, util::UrlError code, const std::string& description) {
    complete(resumed(exchanges.at(index)), {.error = util::urlError(code, description)});
}

}  // namespace halvane::test
