#pragma once

#include "platform/HttpSession.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <variant>

namespace halvane::linux_http {

class TaskBoard;

/// How a transfer ended, before it becomes the result of its kind of task.
struct TaskOutcome {
    std::optional<platform::HttpResponse> response;
    util::Bytes body;
    std::optional<std::filesystem::path> file;
    std::optional<util::Error> error;
};

/// A transfer as its caller holds it. What changes in its life belongs to the board, under the board's lock.
class CurlTask final : public platform::HttpTask, public std::enable_shared_from_this<CurlTask> {
public:
    using Handlers = std::variant<platform::HttpDataHandlers, platform::HttpDownloadHandlers>;
    enum class Direction : std::uint8_t { Up, Down };

    CurlTask(unsigned long identifier, std::weak_ptr<TaskBoard> board, platform::HttpRequest request, Handlers handlers,
             std::shared_ptr<void> context);

    [[nodiscard]] unsigned long taskIdentifier() const override { return identifier_; }
    void resume() override;
    void cancel() override;
    [[nodiscard]] const std::shared_ptr<void>& context() const override { return context_; }

    /// Network thread, while the task runs.
    platform::HttpRequest& request() { return request_; }
    [[nodiscard]] bool isDownload() const { return std::holds_alternative<platform::HttpDownloadHandlers>(handlers_); }
    [[nodiscard]] bool wantsProgress(Direction direction) const;
    [[nodiscard]] std::filesystem::path destinationFor(const platform::HttpResponse& response) const;

private:
    friend class TaskBoard;

    enum class State : std::uint8_t { Suspended, Waiting, Running, Ended, Delivered };

    struct Events {
        std::optional<platform::HttpProgress> up;
        std::optional<platform::HttpProgress> down;
        std::optional<TaskOutcome> outcome;
    };

    /// On the result queue.
    void report(Events& events);

    const unsigned long identifier_;
    const std::weak_ptr<TaskBoard> board_;
    const std::shared_ptr<void> context_;
    platform::HttpRequest request_;  ///< network thread, once it runs
    Handlers handlers_;              ///< constant until the completion takes them

    // Under the board's lock:
    State state_ = State::Suspended;
    bool cancelAsked_ = false;
    bool inMailbox_ = false;  ///< lies there, or is being reported
    Events events_;
};

}  // namespace halvane::linux_http
