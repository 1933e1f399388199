#include "qt/QtMainLoop.h"

#include <sys/eventfd.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <deque>
#include <mutex>
#include <system_error>
#include <utility>

namespace halvane::qt {

/// Blocks that wait, and a descriptor that is readable for as long as there are any.
class QtMainLoop::Queue {
public:
    Queue() : descriptor_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
        if (descriptor_ < 0) throw std::system_error(errno, std::generic_category(), "eventfd of the main loop");
    }
    ~Queue() { ::close(descriptor_); }
    Queue(const Queue&) = delete;
    Queue& operator=(const Queue&) = delete;

    [[nodiscard]] int descriptor() const { return descriptor_; }

    void push(Block block) {
        const std::lock_guard lock(mutex_);
        if (blocks_.empty()) makeReadable();
        blocks_.push_back(std::move(block));
    }

    /// Main thread. Runs what waits now; what that hands in comes after the events of the desktop.
    void run() {
        for (auto left = size(); left > 0; --left) {
            const Block block = pop();
            if (!block) return;  // a block dropped the others, or ran them in an event loop of its own
            block();
        }
    }

    /// Main thread.
    void drop() {
        while (pop()) {
        }
    }

private:
    void makeReadable() const {
        const std::uint64_t count = 1;
        [[maybe_unused]] const auto written = ::write(descriptor_, &count, sizeof count);
    }
    void makeUnreadable() const {
        std::uint64_t count = 0;
        [[maybe_unused]] const auto taken = ::read(descriptor_, &count, sizeof count);
    }
    std::size_t size() {
        const std::lock_guard lock(mutex_);
        return blocks_.size();
    }
    /// The caller frees the block outside the lock, because what it holds may hand in others.
    Block pop() {
        const std::lock_guard lock(mutex_);
        if (blocks_.empty()) return {};
        Block block = std::move(blocks_.front());
        blocks_.pop_front();
        if (blocks_.empty()) makeUnreadable();
        return block;
    }

    const int descriptor_;
    std::mutex mutex_;
    std::deque<Block> blocks_;  // guarded by mutex_
};

class QtMainLoop::RepeatingTimer final : public platform::MainLoop::Timer {
public:
    RepeatingTimer(QObject& loop, std::chrono::milliseconds interval, Block block) {
        timer_.setTimerType(Qt::CoarseTimer);
        QObject::connect(&timer_, &QTimer::timeout, &loop, std::move(block));
        timer_.start(interval);
    }
    void stop() override { timer_.stop(); }

private:
    QTimer timer_;
};

QtMainLoop::QtMainLoop() : queue_(std::make_shared<Queue>()), notifier_(queue_->descriptor(), QSocketNotifier::Read) {
    timer_.setSingleShot(true);
    timer_.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { handOverDue(); });
    QObject::connect(&notifier_, &QSocketNotifier::activated, &timer_, [queue = queue_] {
        const auto alive = queue;  // this function itself goes when a block destroys the loop
        alive->run();
    });
}

QtMainLoop::~QtMainLoop() { queue_->drop(); }

void QtMainLoop::async(Block block) { queue_->push(std::move(block)); }

void QtMainLoop::after(std::chrono::milliseconds delay, Block block) {
    // Timers belong to a thread, so the main thread sets them; what it was late by counts as waited.
    async([this, due = Clock::now() + delay, block = std::move(block)]() mutable {
        delayed_.emplace(due, std::move(block));
        armTimer();
    });
}

void QtMainLoop::armTimer() {
    if (delayed_.empty()) return;
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(delayed_.begin()->first - Clock::now());
    timer_.start(std::max(wait, std::chrono::milliseconds(0)));
}

void QtMainLoop::handOverDue() {
    const auto now = Clock::now();
    while (!delayed_.empty() && delayed_.begin()->first <= now) queue_->push(std::move(delayed_.extract(delayed_.begin()).mapped()));
    armTimer();
}

std::unique_ptr<platform::MainLoop::Timer> QtMainLoop::every(std::chrono::milliseconds interval, Block block) {
    return std::make_unique<RepeatingTimer>(timer_, interval, std::move(block));
}

}  // namespace halvane::qt
