#include "linux/base/AsioDispatchQueues.h"
#include "support/DispatchQueueContract.h"
#include "support/Eventually.h"
#include "support/Gate.h"
#include "support/ManualMainLoop.h"
#include "support/TemporaryDirectory.h"

#include <atomic>
#include <stdexcept>
#include <thread>

namespace halvane::test {

struct ManualLoopHarness {
    std::shared_ptr<platform::DispatchQueue>& queue() { return queue_; }
    bool until(const std::function<bool()>& condition) {
        for (int i = 0; i < 1000 && !condition(); ++i) loop_->advance(std::chrono::milliseconds(1));
        return condition();
    }
    ManualMainLoop* loop_ = new ManualMainLoop;
    std::shared_ptr<platform::DispatchQueue> queue_{loop_};
};

struct SerialQueueHarness {
    std::shared_ptr<platform::DispatchQueue>& queue() { return queue_; }
    static bool until(const std::function<bool()>& condition) { return eventually(condition); }
    linux::AsioDispatchQueues queues;
    std::shared_ptr<platform::DispatchQueue> queue_ = queues.makeSerial("test.serial");
};

INSTANTIATE_TYPED_TEST_SUITE_P(ManualMainLoop, DispatchQueueContract, ManualLoopHarness);
INSTANTIATE_TYPED_TEST_SUITE_P(Asio, DispatchQueueContract, SerialQueueHarness);

}  // namespace halvane::test

namespace halvane::linux {
namespace {

using test::eventually;
using test::Gate;

TEST(AsioDispatchQueues, concurrent_queues_run_blocks_at_the_same_time_and_serial_ones_never) {
    AsioDispatchQueues queues(4);
    const auto concurrent = queues.makeConcurrent("test.concurrent");
    Gate first;
    Gate second;
    std::atomic<int> met = 0;
    concurrent->async([&] { first.open(), met += second.pass() ? 1 : 0; });
    concurrent->async([&] { second.open(), met += first.pass() ? 1 : 0; });
    EXPECT_TRUE(eventually([&] { return met == 2; }));

    const auto serial = queues.makeSerial("test.serial");
    std::atomic<int> inside = 0;
    std::atomic<int> overlaps = 0;
    int ran = 0;  // no atomic: the queue alone keeps its blocks apart
    {
        std::vector<std::jthread> callers;
        for (int caller = 0; caller < 4; ++caller) {
            callers.emplace_back([&] {
                for (int i = 0; i < 500; ++i) {
                    serial->async([&] {
                        overlaps += ++inside > 1 ? 1 : 0;
                        ++ran;
                        --inside;
                    });
                }
            });
        }
    }
    Gate done;
    serial->async([&] { done.open(); });
    ASSERT_TRUE(done.pass());
    EXPECT_EQ(ran, 2000);
    EXPECT_EQ(overlaps, 0);
}

TEST(AsioDispatchQueues, a_queue_that_never_rests_leaves_the_others_their_turn) {
    // Before the queues, whose end waits for the block that uses them.
    std::atomic<bool> enough = false;
    Gate ran;
    Gate rested;
    std::shared_ptr<platform::DispatchQueue> busy;
    std::function<void()> again = [&] { enough ? rested.open() : busy->async(again); };
    AsioDispatchQueues queues(1);
    busy = queues.makeSerial("test.busy");
    const auto other = queues.makeSerial("test.other");
    busy->async(again);
    other->async([&] { ran.open(); });
    EXPECT_TRUE(ran.pass());
    enough = true;
    EXPECT_TRUE(rested.pass());
}

TEST(AsioDispatchQueues, a_block_may_destroy_its_queue) {
    AsioDispatchQueues queues;
    for (int round = 0; round < 50; ++round) {
        auto queue = queues.makeSerial("test.serial");
        Gate held;
        Gate done;
        auto token = std::make_shared<int>();
        const std::weak_ptr<int> released = token;
        queue->async([&] { held.pass(), queue.reset(), done.open(); });
        queue->async([token = std::move(token)] { ADD_FAILURE() << "ran after the queue's end"; });
        held.open();
        ASSERT_TRUE(done.pass());
        ASSERT_TRUE(eventually([&] { return released.expired(); }));
    }
}

TEST(AsioDispatchQueues, a_block_may_be_the_last_owner_of_everything) {
    for (int round = 0; round < 20; ++round) {
        auto queues = std::make_shared<AsioDispatchQueues>(2);
        auto queue = queues->makeConcurrent("test.concurrent");
        Gate started;
        Gate held;
        Gate done;
        queue->async([&, owner = std::exchange(queues, nullptr)]() mutable {
            started.open();
            held.pass();
            owner.reset();
            done.open();
        });
        ASSERT_TRUE(started.pass());
        queue.reset();
        held.open();
        ASSERT_TRUE(done.pass());
    }
}

TEST(AsioDispatchQueues, the_end_waits_for_running_blocks_and_drops_the_others) {
    auto queues = std::make_unique<AsioDispatchQueues>(1);
    const auto queue = queues->makeSerial("test.serial");
    Gate started;
    std::atomic<bool> ended = false;
    queue->async([&] {
        started.open();
        std::this_thread::yield();
        ended = true;
    });
    auto token = std::make_shared<int>();
    const std::weak_ptr<int> released = token;
    // A block that holds its own queue: a cycle, unless the end opens it.
    queue->after(std::chrono::hours(1), [queue, token = std::move(token)] {});
    ASSERT_TRUE(started.pass());
    queues.reset();
    EXPECT_TRUE(ended);
    EXPECT_TRUE(released.expired());
    queue->async([] { ADD_FAILURE() << "ran after the end"; });
}

TEST(AsioDispatchQueuesDeathTest, an_exception_that_leaves_a_block_ends_the_program) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    // The program that dies makes a home of its own and has no time to remove it.
    const test::TemporaryDirectory directory;
    ::setenv("TMPDIR", directory.path().c_str(), 1);
    EXPECT_DEATH(
        {
            AsioDispatchQueues queues(1);
            const auto queue = queues.makeSerial("test.serial");
            queue->async([] { throw std::runtime_error("a bug"); });
            Gate().pass();
        },
        "a bug");
    ::unsetenv("TMPDIR");
}

}  // namespace
}  // namespace halvane::linux
