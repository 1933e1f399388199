#pragma once

#include "linux/http/CurlTask.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace halvane::linux_http {

/// What callers, the network thread and the result queue know of a session's tasks, under one lock.
/// Callers hand tasks in; the network thread takes those that may run, in order, and hands outcomes back;
/// they wait in the mailbox until a block on the result queue reports them.
///
/// One block reports what has gathered, and what comes meanwhile: waking a thread of the queue for each completion costs as
/// much as the rest of it. On a concurrent queue no completion waits long for another one's callback, though: where nothing was
/// taken for a millisecond although something waits, the network thread posts a further block. One task is reported by one
/// block at a time.
class TaskBoard : public std::enable_shared_from_this<TaskBoard> {
public:
    /// `queue` is kept alive by the session and its thread.
    TaskBoard(std::weak_ptr<platform::DispatchQueue> queue, int limit);
    ~TaskBoard();
    TaskBoard(const TaskBoard&) = delete;
    TaskBoard& operator=(const TaskBoard&) = delete;

    // Any thread.
    std::shared_ptr<CurlTask> add(platform::HttpRequest request, CurlTask::Handlers handlers, std::shared_ptr<void> context);
    void resume(CurlTask& task);
    void cancel(CurlTask& task);
    [[nodiscard]] std::vector<std::shared_ptr<platform::HttpTask>> tasks() const;
    [[nodiscard]] std::shared_ptr<platform::HttpTask> task(unsigned long identifier) const;
    void setLimit(int limit);
    /// Cancels all tasks, those to come too.
    void invalidate();
    /// As above, and sends the network thread home.
    void close();

    // Network thread.
    struct Work {
        std::vector<std::shared_ptr<CurlTask>> starts;
        std::vector<std::shared_ptr<CurlTask>> cancels;
        bool closed = false;
    };
    struct Ended {
        std::shared_ptr<CurlTask> task;
        TaskOutcome outcome;
    };
    /// Fills `work`; false when there is none, and then every later change wakes the thread.
    bool takeWork(Work& work);
    /// Posts a further block where the delivery is stuck. Answers when to look again at the latest; absent: no need.
    std::optional<std::chrono::milliseconds> watchDelivery(std::chrono::steady_clock::time_point now);
    /// Readable when the thread has to wake up.
    [[nodiscard]] int wakeDescriptor() const { return wakeDescriptor_; }
    /// The thread is awake, whether the descriptor woke it or something else: nobody needs to wake it.
    enum class WokenBy : std::uint8_t { Descriptor, Other };
    void awake(WokenBy reason);
    /// Whether the task's caller has cancelled it since it began to run.
    [[nodiscard]] bool isCancelAsked(const CurlTask& task) const;
    void end(std::vector<Ended>& ended);
    void progress(CurlTask& task, CurlTask::Direction direction, const platform::HttpProgress& progress);

private:
    /// What a change makes necessary once the lock is open again: who is woken inside it would wait for it at once.
    struct Afterwards {
        bool post = false;
        bool wake = false;
    };

    void cancelLocked(CurlTask& task);
    void endLocked(CurlTask& task, TaskOutcome outcome);
    void putLocked(CurlTask& task);
    /// Claims what is needed and not on its way yet: the claimer does it.
    [[nodiscard]] Afterwards claimLocked();
    /// As above, after a change by another thread than the network's, which may have to begin to watch the delivery.
    [[nodiscard]] Afterwards claimForeignLocked();
    void perform(Afterwards afterwards);
    void deliver();
    /// False when the mailbox is empty.
    bool deliverOne();

    const std::weak_ptr<platform::DispatchQueue> queue_;
    const int wakeDescriptor_;
    std::atomic<bool> sleeping_{false};  ///< becomes true under the lock only

    mutable std::mutex mutex_;  // guards what follows
    std::map<unsigned long, std::shared_ptr<CurlTask>> tasks_;
    std::deque<std::shared_ptr<CurlTask>> waiting_;
    std::vector<std::shared_ptr<CurlTask>> cancels_;
    std::deque<std::shared_ptr<CurlTask>> mailbox_;
    unsigned long lastIdentifier_ = 0;
    std::size_t limit_;
    std::size_t running_ = 0;
    bool invalid_ = false;
    bool closed_ = false;
    bool blockOnItsWay_ = false;  ///< posted and not begun
    int delivering_ = 0;          ///< blocks that have begun
    std::uint64_t delivered_ = 0;

    /// What the network thread saw of the mailbox when it last looked; absent while it need not look.
    struct Watch {
        std::uint64_t delivered;
        std::chrono::steady_clock::time_point since;
        std::chrono::milliseconds patience;
    };
    std::optional<Watch> watch_;
};

}  // namespace halvane::linux_http
