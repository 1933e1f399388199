#pragma once

#include "platform/DispatchQueue.h"
#include "platform/HttpMessage.h"
#include "platform/HttpTls.h"
#include "util/Result.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace halvane::platform {

/// How a task ended. `response` is absent when no whole header arrived. A status outside 200-299 is a
/// response like any other here: callers judge it. `error` is of the "halvane.url" domain.
struct HttpDataResult {
    std::optional<HttpResponse> response;
    util::Bytes body;  ///< what arrived; may be part of a body when `error` is set
    std::optional<util::Error> error;
};

struct HttpDownloadResult {
    std::optional<HttpResponse> response;
    std::optional<std::filesystem::path> file;  ///< set exactly when the whole body stands there
    std::optional<util::Error> error;
};

/// Callbacks of a data or upload task, all on the session's result queue: progress in order, then
/// exactly one completion, nothing after it. Progress is reported at most every 50 ms and at the end.
struct HttpDataHandlers {
    std::function<void(const HttpProgress&)> onUploadProgress;
    std::function<void(const HttpProgress&)> onDownloadProgress;
    std::function<void(HttpDataResult)> onCompletion;
};

/// As above. `destination` is asked once, on the network thread, when the header of a success has
/// arrived; an existing file there is replaced when the body is whole. Unless the body is whole and the
/// status 200-299, no file is left (another status: error BadServerResponse).
struct HttpDownloadHandlers {
    std::function<std::filesystem::path(const HttpResponse&)> destination;
    std::function<void(const HttpProgress&)> onProgress;
    std::function<void(HttpDownloadResult)> onCompletion;
};

/// One transfer. Any thread. Holding a task keeps neither the transfer nor its session alive: a task
/// that was resumed runs until it completes, a session that ends cancels it.
class HttpTask {
public:
    virtual ~HttpTask() = default;
    /// Unique within its session, counting from 1 in the order in which tasks were made.
    [[nodiscard]] virtual unsigned long taskIdentifier() const = 0;
    /// Starts it; a second call does nothing. Above the session's limit it waits its turn, in order.
    virtual void resume() = 0;
    /// Ends it with Cancelled, whether it runs, waits or was never resumed, or has ended without its completion having
    /// begun (a download whose file stands keeps its success). Nothing after completion.
    virtual void cancel() = 0;
    /// What the caller tied to the task when it was made; lives as long as the task.
    [[nodiscard]] virtual const std::shared_ptr<void>& context() const = 0;
};

/// A pool of connections with a limit on tasks that run at once. Tasks are made suspended. Any thread
/// may call; it may be called, and destroyed, inside a callback. Destroying cancels all tasks, and their
/// completions still arrive; it waits for a callback that the network thread may be in, unless it is that callback.
class HttpSession {
public:
    virtual ~HttpSession() = default;

    /// Sends `body` or `bodyStream` when there is one.
    virtual std::shared_ptr<HttpTask> dataTask(HttpRequest request, HttpDataHandlers handlers, std::shared_ptr<void> context = nullptr) = 0;
    virtual std::shared_ptr<HttpTask> downloadTask(HttpRequest request, HttpDownloadHandlers handlers,
                                                   std::shared_ptr<void> context = nullptr) = 0;

    /// Tasks that have not completed, oldest first: running, waiting and not yet resumed.
    [[nodiscard]] virtual std::vector<std::shared_ptr<HttpTask>> tasks() const = 0;

    /// The one of them with that number, or null.
    [[nodiscard]] virtual std::shared_ptr<HttpTask> task(unsigned long taskIdentifier) const = 0;

    /// At least 1. Lowering it lets running tasks end.
    virtual void setMaximumConcurrentTasks(int count) = 0;

    /// Cancels all tasks; what is made afterwards ends at once with Cancelled.
    virtual void invalidateCancelingTasks() = 0;
};

/// What a session is made with; constant after that.
struct HttpSessionConfiguration {
    std::shared_ptr<DispatchQueue> resultQueue;  ///< required
    int maximumConcurrentTasks = 6;
    HttpTlsPolicy tls;
};

/// Makes sessions, each with its own thread and connections, and knows the files that bodies come from and
/// go to. Any thread.
class HttpTransport {
public:
    virtual ~HttpTransport() = default;
    /// A body out of a file, which must be there, readable and regular now; it is opened again whenever it is sent, and
    /// then must be at least as long as it was now; what was added is not sent. Errors: the file cannot be read ("halvane.file").
    virtual util::Result<std::shared_ptr<HttpBodyStream>> fileBody(const std::filesystem::path& file) = 0;
    [[nodiscard]] virtual bool isDirectory(const std::filesystem::path& path) const = 0;
    virtual std::shared_ptr<HttpSession> makeSession(HttpSessionConfiguration configuration) = 0;
};

}  // namespace halvane::platform
