#include "linux/ChildWatcher.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <cerrno>
#include <cstdint>
#include <iterator>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

namespace halvane::linux {

namespace {

/// How often a child is looked at for which the system gave no descriptor.
constexpr int kLookIntervalMs = 100;

/// The exit status once the child has ended.
std::optional<int> collect(pid_t pid) {
    int status = 0;
    pid_t answer = 0;
    do answer = ::waitpid(pid, &status, WNOHANG);
    while (answer < 0 && errno == EINTR);
    if (answer == 0) return std::nullopt;
    if (answer < 0) return -1;
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

}  // namespace

struct ChildWatcher::Child {
    pid_t pid;
    Descriptor descriptor;  // readable once the child has ended
    Ended onEnded;
};

class ChildWatcher::State : public std::enable_shared_from_this<State> {
public:
    void add(Child child) {
        const std::lock_guard lock(mutex_);
        if (stopping_) return;
        if (!thread_.joinable()) thread_ = std::thread([self = shared_from_this()] { self->run(); });
        arriving_.push_back(std::move(child));
        wake();
    }

    void stop() {
        std::thread thread;
        {
            const std::lock_guard lock(mutex_);
            stopping_ = true;
            thread.swap(thread_);
            wake();
        }
        if (!thread.joinable()) return;
        if (thread.get_id() == std::this_thread::get_id()) {
            thread.detach();  // a callback destroys the watcher; the thread ends when that returns
        } else {
            thread.join();
        }
    }

private:
    void wake() const {
        const std::uint64_t one = 1;
        [[maybe_unused]] const auto written = ::write(wakeUp_.get(), &one, sizeof one);
    }

    void run() {
        std::vector<Child> children;
        while (takeArrived(children)) {
            waitForChange(children);
            for (auto child = children.begin(); child != children.end();) {
                const auto exitStatus = collect(child->pid);
                if (!exitStatus) {
                    ++child;
                    continue;
                }
                const Child ended = std::move(*child);
                child = children.erase(child);
                if (stopping()) return;
                if (ended.onEnded) ended.onEnded(*exitStatus);
            }
        }
    }

    /// False when it is time to end.
    bool takeArrived(std::vector<Child>& children) {
        const std::lock_guard lock(mutex_);
        children.insert(children.end(), std::make_move_iterator(arriving_.begin()), std::make_move_iterator(arriving_.end()));
        arriving_.clear();
        return !stopping_;
    }

    [[nodiscard]] bool stopping() const {
        const std::lock_guard lock(mutex_);
        return stopping_;
    }

    void waitForChange(const std::vector<Child>& children) const {
        std::vector<pollfd> waits{{wakeUp_.get(), POLLIN, 0}};
        int timeout = -1;
        for (const auto& child : children) {
            if (child.descriptor) {
                waits.push_back({child.descriptor.get(), POLLIN, 0});
            } else {
                timeout = kLookIntervalMs;
            }
        }
        if (::poll(waits.data(), waits.size(), timeout) > 0 && waits.front().revents != 0) {
            std::uint64_t count = 0;
            [[maybe_unused]] const auto drained = ::read(wakeUp_.get(), &count, sizeof count);
        }
    }

    const Descriptor wakeUp_{::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
    mutable std::mutex mutex_;  // guards all below
    std::thread thread_;
    std::vector<Child> arriving_;
    bool stopping_ = false;
};

ChildWatcher::ChildWatcher() : state_(std::make_shared<State>()) {}

ChildWatcher::~ChildWatcher() { state_->stop(); }

void ChildWatcher::watch(pid_t child, Ended onEnded) {
    state_->add({child, Descriptor(static_cast<int>(::syscall(SYS_pidfd_open, child, 0))), std::move(onEnded)});
}

}  // namespace halvane::linux
