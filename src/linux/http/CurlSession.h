#pragma once

#include "linux/http/TaskBoard.h"

#include <memory>
#include <thread>

namespace halvane::linux_http {

/// The caller's end of a session. Destroying it cancels what runs and waits for the network thread, which takes
/// no longer than a callback that this thread may be in; destroyed by such a callback, it does not wait.
class CurlSession final : public platform::HttpSession {
public:
    CurlSession(platform::HttpSessionConfiguration configuration, std::uint64_t largestBody);
    ~CurlSession() override;
    CurlSession(const CurlSession&) = delete;
    CurlSession& operator=(const CurlSession&) = delete;

    std::shared_ptr<platform::HttpTask> dataTask(platform::HttpRequest request, platform::HttpDataHandlers handlers,
                                                 std::shared_ptr<void> context) override;
    std::shared_ptr<platform::HttpTask> downloadTask(platform::HttpRequest request, platform::HttpDownloadHandlers handlers,
                                                     std::shared_ptr<void> context) override;
    [[nodiscard]] std::vector<std::shared_ptr<platform::HttpTask>> tasks() const override { return board_->tasks(); }
    [[nodiscard]] std::shared_ptr<platform::HttpTask> task(unsigned long taskIdentifier) const override {
        return board_->task(taskIdentifier);
    }
    void setMaximumConcurrentTasks(int count) override { board_->setLimit(count); }
    void invalidateCancelingTasks() override { board_->invalidate(); }

private:
    const std::shared_ptr<platform::DispatchQueue> queue_;  ///< for completions after the thread has ended
    const std::shared_ptr<TaskBoard> board_;
    std::thread thread_;
};

}  // namespace halvane::linux_http
