#include "linux/http/CurlTask.h"

#include "linux/http/TaskBoard.h"

#include <utility>

namespace halvane::linux_http {

CurlTask::CurlTask(unsigned long identifier, std::weak_ptr<TaskBoard> board, platform::HttpRequest request, Handlers handlers,
                   std::shared_ptr<void> context)
    : identifier_(identifier),
      board_(std::move(board)),
      context_(std::move(context)),
      request_(std::move(request)),
      handlers_(std::move(handlers)) {}

void CurlTask::resume() {
    if (const auto board = board_.lock()) board->resume(*this);
}

void CurlTask::cancel() {
    if (const auto board = board_.lock()) board->cancel(*this);
}

bool CurlTask::wantsProgress(Direction direction) const {
    if (const auto* download = std::get_if<platform::HttpDownloadHandlers>(&handlers_)) {
        return direction == Direction::Down && download->onProgress;
    }
    const auto& data = std::get<platform::HttpDataHandlers>(handlers_);
    return direction == Direction::Up ? static_cast<bool>(data.onUploadProgress) : static_cast<bool>(data.onDownloadProgress);
}

std::filesystem::path CurlTask::destinationFor(const platform::HttpResponse& response) const {
    const auto& ask = std::get<platform::HttpDownloadHandlers>(handlers_).destination;
    return ask ? ask(response) : std::filesystem::path();
}

void CurlTask::report(Events& events) {
    if (events.up) std::get<platform::HttpDataHandlers>(handlers_).onUploadProgress(*events.up);
    if (events.down) {
        const auto* download = std::get_if<platform::HttpDownloadHandlers>(&handlers_);
        (download != nullptr ? download->onProgress : std::get<platform::HttpDataHandlers>(handlers_).onDownloadProgress)(*events.down);
    }
    if (!events.outcome) return;
    // Taken out, so that what the callbacks hold goes with the completion, the task itself among it.
    TaskOutcome& outcome = *events.outcome;
    std::visit(
        [&outcome]<typename H>(H handlers) {
            if (!handlers.onCompletion) return;
            if constexpr (std::is_same_v<H, platform::HttpDataHandlers>) {
                handlers.onCompletion({std::move(outcome.response), std::move(outcome.body), std::move(outcome.error)});
            } else {
                handlers.onCompletion({std::move(outcome.response), std::move(outcome.file), std::move(outcome.error)});
            }
        },
        std::exchange(handlers_, {}));
}

}  // namespace halvane::linux_http
