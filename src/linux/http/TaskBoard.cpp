#include "linux/http/TaskBoard.h"

#include "linux/http/CurlErrors.h"

#include <sys/eventfd.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <system_error>
#include <utility>

namespace halvane::linux_http {

namespace {

int makeWakeDescriptor() {
    const int descriptor = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (descriptor < 0) throw std::system_error(errno, std::generic_category(), "eventfd");
    return descriptor;
}

std::size_t asLimit(int limit) { return static_cast<std::size_t>(std::max(limit, 1)); }

}  // namespace

TaskBoard::TaskBoard(std::weak_ptr<platform::DispatchQueue> queue, int limit)
    : queue_(std::move(queue)), wakeDescriptor_(makeWakeDescriptor()), limit_(asLimit(limit)) {}

TaskBoard::~TaskBoard() { ::close(wakeDescriptor_); }

std::shared_ptr<CurlTask> TaskBoard::add(platform::HttpRequest request, CurlTask::Handlers handlers, std::shared_ptr<void> context) {
    std::unique_lock lock(mutex_);
    auto task =
        std::make_shared<CurlTask>(++lastIdentifier_, weak_from_this(), std::move(request), std::move(handlers), std::move(context));
    tasks_.emplace_hint(tasks_.end(), lastIdentifier_, task);
    if (!invalid_) return task;
    endLocked(*task, {.error = cancelledError()});
    const Afterwards afterwards = claimForeignLocked();
    lock.unlock();
    perform(afterwards);
    return task;
}

void TaskBoard::resume(CurlTask& task) {
    std::unique_lock lock(mutex_);
    if (task.state_ != CurlTask::State::Suspended) return;
    task.state_ = CurlTask::State::Waiting;
    waiting_.push_back(task.shared_from_this());
    const Afterwards afterwards = claimForeignLocked();
    lock.unlock();
    perform(afterwards);
}

void TaskBoard::cancel(CurlTask& task) {
    // The board's own reference may be the last one but the caller's, and goes with the completion.
    const auto kept = task.shared_from_this();
    std::unique_lock lock(mutex_);
    cancelLocked(task);
    const Afterwards afterwards = claimForeignLocked();
    lock.unlock();
    perform(afterwards);
}

void TaskBoard::cancelLocked(CurlTask& task) {
    switch (task.state_) {
        case CurlTask::State::Waiting:
            std::erase_if(waiting_, [&task](const auto& other) { return other.get() == &task; });
            [[fallthrough]];
        case CurlTask::State::Suspended:
            endLocked(task, {.error = cancelledError()});
            break;
        case CurlTask::State::Running:
            if (std::exchange(task.cancelAsked_, true)) break;
            cancels_.push_back(task.shared_from_this());
            break;
        case CurlTask::State::Ended:
            // Not told yet, so still the caller's to cancel; a download's file stands already.
            if (!task.isDownload()) task.events_.outcome = TaskOutcome{.error = cancelledError()};
            break;
        case CurlTask::State::Delivered:
            break;
    }
}

std::vector<std::shared_ptr<platform::HttpTask>> TaskBoard::tasks() const {
    const std::lock_guard lock(mutex_);
    std::vector<std::shared_ptr<platform::HttpTask>> open;
    open.reserve(tasks_.size());
    for (const auto& [identifier, task] : tasks_) open.push_back(task);
    return open;
}

std::shared_ptr<platform::HttpTask> TaskBoard::task(unsigned long identifier) const {
    const std::lock_guard lock(mutex_);
    const auto found = tasks_.find(identifier);
    return found == tasks_.end() ? nullptr : found->second;
}

void TaskBoard::setLimit(int limit) {
    std::unique_lock lock(mutex_);
    limit_ = asLimit(limit);
    const Afterwards afterwards = claimForeignLocked();
    lock.unlock();
    perform(afterwards);
}

void TaskBoard::invalidate() {
    std::unique_lock lock(mutex_);
    invalid_ = true;
    waiting_.clear();
    for (const auto& [identifier, task] : tasks_) cancelLocked(*task);
    const Afterwards afterwards = claimForeignLocked();
    lock.unlock();
    perform(afterwards);
}

void TaskBoard::close() {
    invalidate();
    std::unique_lock lock(mutex_);
    closed_ = true;
    const Afterwards afterwards = claimForeignLocked();
    lock.unlock();
    perform(afterwards);
}

bool TaskBoard::takeWork(Work& work) {
    work.starts.clear();
    work.cancels.clear();
    const std::lock_guard lock(mutex_);
    work.closed = closed_;
    std::swap(work.cancels, cancels_);
    for (; !waiting_.empty() && running_ < limit_; ++running_) {
        waiting_.front()->state_ = CurlTask::State::Running;
        work.starts.push_back(std::move(waiting_.front()));
        waiting_.pop_front();
    }
    if (!work.starts.empty() || !work.cancels.empty() || closed_) return true;
    sleeping_.store(true, std::memory_order_relaxed);
    return false;
}

void TaskBoard::awake(WokenBy reason) {
    sleeping_.store(false, std::memory_order_relaxed);
    std::uint64_t wakes = 0;
    while (reason == WokenBy::Descriptor && ::read(wakeDescriptor_, &wakes, sizeof wakes) < 0 && errno == EINTR) continue;
}

bool TaskBoard::isCancelAsked(const CurlTask& task) const {
    const std::lock_guard lock(mutex_);
    return task.cancelAsked_;
}

void TaskBoard::end(std::vector<Ended>& ended) {
    if (ended.empty()) return;
    std::unique_lock lock(mutex_);
    for (Ended& one : ended) {
        --running_;
        if (one.task->cancelAsked_ && !one.outcome.file) one.outcome = TaskOutcome{.error = cancelledError()};
        endLocked(*one.task, std::move(one.outcome));
    }
    const Afterwards afterwards = claimLocked();
    lock.unlock();
    perform(afterwards);
    ended.clear();
}

void TaskBoard::progress(CurlTask& task, CurlTask::Direction direction, const platform::HttpProgress& progress) {
    std::unique_lock lock(mutex_);
    (direction == CurlTask::Direction::Up ? task.events_.up : task.events_.down) = progress;
    putLocked(task);
    const Afterwards afterwards = claimLocked();
    lock.unlock();
    perform(afterwards);
}

void TaskBoard::endLocked(CurlTask& task, TaskOutcome outcome) {
    task.state_ = CurlTask::State::Ended;
    task.events_.outcome = std::move(outcome);
    putLocked(task);
}

void TaskBoard::putLocked(CurlTask& task) {
    if (!std::exchange(task.inMailbox_, true)) mailbox_.push_back(task.shared_from_this());
}

TaskBoard::Afterwards TaskBoard::claimLocked() {
    const bool startable = !waiting_.empty() && running_ < limit_;
    // Without a network thread nobody watches: every block posts the next one before it calls anybody.
    const bool postable = !mailbox_.empty() && !blockOnItsWay_ && (delivering_ == 0 || closed_);
    blockOnItsWay_ = blockOnItsWay_ || postable;
    return {.post = postable, .wake = (startable || !cancels_.empty() || closed_) && sleeping_.exchange(false, std::memory_order_relaxed)};
}

TaskBoard::Afterwards TaskBoard::claimForeignLocked() {
    Afterwards afterwards = claimLocked();
    const bool unwatched = !mailbox_.empty() && !blockOnItsWay_ && !watch_;
    afterwards.wake = afterwards.wake || (unwatched && sleeping_.exchange(false, std::memory_order_relaxed));
    return afterwards;
}

void TaskBoard::perform(Afterwards afterwards) {
    constexpr std::uint64_t kOnce = 1;
    while (afterwards.wake && ::write(wakeDescriptor_, &kOnce, sizeof kOnce) < 0 && errno == EINTR) continue;
    if (!afterwards.post) return;
    if (const auto queue = queue_.lock()) queue->async([self = shared_from_this()] { self->deliver(); });
}

std::optional<std::chrono::milliseconds> TaskBoard::watchDelivery(std::chrono::steady_clock::time_point now) {
    constexpr std::chrono::milliseconds kShortest{1};
    constexpr std::chrono::milliseconds kLongest{128};  // behind a queue that does not run at all
    std::unique_lock lock(mutex_);
    if (mailbox_.empty()) {
        watch_.reset();
        return std::nullopt;
    }
    if (!watch_ || watch_->delivered != delivered_) watch_ = Watch{delivered_, now, kShortest};
    if (now - watch_->since < watch_->patience) return watch_->patience;
    watch_->since = now;
    watch_->patience = std::min(2 * watch_->patience, kLongest);
    const auto again = watch_->patience;
    const bool stuck = !std::exchange(blockOnItsWay_, true);
    lock.unlock();
    perform({.post = stuck});
    return again;
}

void TaskBoard::deliver() {
    constexpr int kMostPerBlock = 64;  // others want the queue too
    {
        const std::lock_guard lock(mutex_);
        blockOnItsWay_ = false;
        ++delivering_;
    }
    for (int i = 0; i < kMostPerBlock && deliverOne(); ++i) continue;
    std::unique_lock lock(mutex_);
    --delivering_;
    const Afterwards afterwards = claimForeignLocked();
    lock.unlock();
    perform(afterwards);
}

bool TaskBoard::deliverOne() {
    std::unique_lock lock(mutex_);
    if (mailbox_.empty()) return false;
    const std::shared_ptr<CurlTask> task = std::move(mailbox_.front());
    mailbox_.pop_front();
    ++delivered_;
    CurlTask::Events events = std::exchange(task->events_, {});
    if (events.outcome) {
        task->state_ = CurlTask::State::Delivered;
        tasks_.erase(task->identifier_);
    }
    const Afterwards afterwards = claimForeignLocked();
    lock.unlock();
    perform(afterwards);
    task->report(events);
    if (events.outcome) return true;

    lock.lock();
    task->inMailbox_ = false;
    if (task->events_.up || task->events_.down || task->events_.outcome) putLocked(*task);
    return true;
}

}  // namespace halvane::linux_http
