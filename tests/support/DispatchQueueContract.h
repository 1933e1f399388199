#pragma once

#include "platform/DispatchQueue.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <mutex>
#include <string>

namespace halvane::test {

/// What every serial DispatchQueue does. `Harness`: `queue()`, a shared_ptr that the test may
/// empty; `until(condition)`, which lets the queue work until then and answers whether it came.
template <typename Harness>
class DispatchQueueContract : public testing::Test {
protected:
    std::shared_ptr<platform::DispatchQueue>& queue() { return harness_.queue(); }
    bool until(const std::function<bool()>& condition) { return harness_.until(condition); }

    void note(const std::string& what) {
        const std::lock_guard lock(mutex_);
        noted_ += what;
    }
    std::string noted() {
        const std::lock_guard lock(mutex_);
        return noted_;
    }

private:
    std::mutex mutex_;
    std::string noted_;
    Harness harness_;  // last: its queue ends before what blocks use
};

TYPED_TEST_SUITE_P(DispatchQueueContract);

TYPED_TEST_P(DispatchQueueContract, a_block_never_runs_inside_the_call_that_hands_it_in) {
    thread_local bool calling = false;
    calling = true;
    this->queue()->async([this] { this->note(calling ? "inside " : "later "); });
    this->queue()->after(std::chrono::milliseconds(0), [this] { this->note(calling ? "inside" : "later"); });
    calling = false;
    EXPECT_TRUE(this->until([this] { return this->noted() == "later later"; })) << this->noted();
}

TYPED_TEST_P(DispatchQueueContract, blocks_run_in_order_and_delayed_ones_by_their_time) {
    using std::chrono::milliseconds;
    this->queue()->after(milliseconds(60), [this] { this->note("D"); });
    this->queue()->after(milliseconds(20), [this] { this->note("C"); });
    for (int i = 0; i < 200; ++i) this->queue()->async([this] { this->note("."); });
    this->queue()->async([this] {
        this->note("A");
        this->queue()->async([this] { this->note("B"); });
    });
    EXPECT_TRUE(this->until([this] { return this->noted() == std::string(200, '.') + "ABCD"; })) << this->noted();
}

TYPED_TEST_P(DispatchQueueContract, blocks_held_at_the_end_never_run_and_are_released) {
    auto held = std::make_shared<int>();
    this->queue()->after(std::chrono::hours(1), [held] { FAIL() << "ran after the queue's end"; });
    const std::weak_ptr<int> released = std::exchange(held, nullptr);
    this->queue().reset();
    EXPECT_TRUE(released.expired());
}

REGISTER_TYPED_TEST_SUITE_P(DispatchQueueContract, a_block_never_runs_inside_the_call_that_hands_it_in,
                            blocks_run_in_order_and_delayed_ones_by_their_time, blocks_held_at_the_end_never_run_and_are_released);

}  // namespace halvane::test
