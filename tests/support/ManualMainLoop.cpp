#include "support/ManualMainLoop.h"

#include <algorithm>
#include <utility>

namespace halvane::test {

class ManualMainLoop::ManualTimer final : public platform::MainLoop::Timer {
public:
    ManualTimer() : alive_(std::make_shared<bool>(true)) {}
    ~ManualTimer() override { stop(); }
    void stop() override { *alive_ = false; }
    [[nodiscard]] std::shared_ptr<bool> alive() const { return alive_; }

private:
    std::shared_ptr<bool> alive_;
};

void ManualMainLoop::async(Block block) { after(std::chrono::milliseconds(0), std::move(block)); }

void ManualMainLoop::after(std::chrono::milliseconds delay, Block block) {
    const std::lock_guard lock(mutex_);
    schedule(now_ + delay, std::move(block));
}

void ManualMainLoop::schedule(std::chrono::milliseconds due, Block block) { blocks_.emplace(Key{due, arrivals_++}, std::move(block)); }

std::unique_ptr<platform::MainLoop::Timer> ManualMainLoop::every(std::chrono::milliseconds interval, Block block) {
    auto timer = std::make_unique<ManualTimer>();
    // The block holds itself weakly through the shared slot, so that a stopped timer frees it.
    auto repeat = std::make_shared<std::function<void()>>();
    *repeat = [this, interval, block = std::move(block), alive = timer->alive(), weak = std::weak_ptr(repeat)] {
        if (!*alive) return;
        block();
        if (const auto self = weak.lock(); self && *alive) after(interval, [self] { (*self)(); });
    };
    after(interval, [repeat] { (*repeat)(); });
    return timer;
}

int ManualMainLoop::advance(std::chrono::milliseconds duration) {
    int ran = 0;
    std::unique_lock lock(mutex_);
    const auto end = now_ + duration;
    while (!blocks_.empty() && blocks_.begin()->first.first <= end) {
        auto node = blocks_.extract(blocks_.begin());
        now_ = std::max(now_, node.key().first);
        lock.unlock();
        node.mapped()();
        ++ran;
        lock.lock();
    }
    now_ = end;
    return ran;
}

std::size_t ManualMainLoop::waiting() const {
    const std::lock_guard lock(mutex_);
    return blocks_.size();
}

}  // namespace halvane::test
