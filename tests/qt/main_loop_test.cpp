#include "qt/QtMainLoop.h"

#include "support/ManualMainLoop.h"

#include <gtest/gtest.h>
#include <QTest>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

using namespace std::chrono_literals;

namespace halvane::test {
namespace {

/// A main loop and the way to let its time pass until something holds.
struct Driven {
    virtual ~Driven() = default;
    virtual platform::MainLoop& loop() = 0;
    virtual void destroyLoop() = 0;
    virtual bool runUntil(const std::function<bool()>& condition) = 0;
    /// Long enough for everything that a test handed in to have run.
    virtual void settle() = 0;
};

struct DrivenQt final : Driven {
    std::unique_ptr<qt::QtMainLoop> main = std::make_unique<qt::QtMainLoop>();
    platform::MainLoop& loop() override { return *main; }
    void destroyLoop() override { main.reset(); }
    bool runUntil(const std::function<bool()>& condition) override { return QTest::qWaitFor(condition, 5000); }
    void settle() override {
        // A timer that is due after all others of the tests has run, so they would have too.
        bool passed = false;
        QTimer::singleShot(60, Qt::PreciseTimer, [&passed] { passed = true; });
        EXPECT_TRUE(runUntil([&passed] { return passed; }));
    }
};

struct DrivenManual final : Driven {
    std::unique_ptr<ManualMainLoop> main = std::make_unique<ManualMainLoop>();
    platform::MainLoop& loop() override { return *main; }
    void destroyLoop() override { main.reset(); }
    bool runUntil(const std::function<bool()>& condition) override {
        for (int step = 0; step < 1000 && !condition(); ++step) main->advance(1ms);
        return condition();
    }
    void settle() override {
        if (main) main->advance(60ms);
    }
};

/// What every main loop promises, on the real one and on the one that tests drive.
template <typename T>
class MainLoopContract : public testing::Test {
protected:
    T driven;
    std::vector<std::string> events;

    platform::DispatchQueue::Block note(std::string event) {
        return [this, event = std::move(event)] { events.push_back(event); };
    }
    bool happened(std::size_t count) {
        return driven.runUntil([this, count] { return events.size() >= count; });
    }
    using Events = std::vector<std::string>;
};

using Loops = testing::Types<DrivenQt, DrivenManual>;
TYPED_TEST_SUITE(MainLoopContract, Loops);

TYPED_TEST(MainLoopContract, blocks_run_later_and_in_the_order_they_were_handed_in) {
    this->driven.loop().async([this] {
        this->events.push_back("first");
        this->driven.loop().async(this->note("handed in by the first"));
    });
    this->driven.loop().async(this->note("second"));
    EXPECT_TRUE(this->events.empty());
    ASSERT_TRUE(this->happened(3));
    EXPECT_EQ(this->events, (std::vector<std::string>{"first", "second", "handed in by the first"}));
}

TYPED_TEST(MainLoopContract, delayed_blocks_run_in_the_order_of_their_times) {
    this->driven.loop().after(40ms, this->note("40"));
    this->driven.loop().after(20ms, this->note("20"));
    this->driven.loop().after(21ms, this->note("21"));
    this->driven.loop().after(20ms, this->note("20 again"));
    this->driven.loop().after(-5ms, this->note("overdue"));
    ASSERT_TRUE(this->happened(5));
    EXPECT_EQ(this->events, (std::vector<std::string>{"overdue", "20", "20 again", "21", "40"}));
}

TYPED_TEST(MainLoopContract, blocks_of_other_threads_run_here_and_keep_their_threads_order) {
    constexpr int kEach = 50;
    const auto here = std::this_thread::get_id();
    std::vector<std::vector<int>> arrived(4);
    std::vector<std::thread> threads;
    for (std::size_t number = 0; number < arrived.size(); ++number) {
        threads.emplace_back([this, number, here, &arrived] {
            for (int i = 0; i < kEach; ++i) {
                this->driven.loop().async([number, i, here, &arrived] {
                    EXPECT_EQ(std::this_thread::get_id(), here);
                    arrived[number].push_back(i);
                });
            }
            this->driven.loop().after(1ms, this->note("delayed"));
        });
    }
    for (auto& thread : threads) thread.join();
    ASSERT_TRUE(this->happened(arrived.size()));
    for (const auto& numbers : arrived) {
        EXPECT_EQ(numbers.size(), std::size_t{kEach});
        EXPECT_TRUE(std::ranges::is_sorted(numbers));
    }
}

TYPED_TEST(MainLoopContract, timer_repeats_until_it_is_stopped) {
    const auto timer = this->driven.loop().every(5ms, this->note("turn"));
    ASSERT_TRUE(this->happened(3));
    timer->stop();
    const auto turns = this->events.size();
    this->driven.settle();
    EXPECT_EQ(this->events.size(), turns);
}

TYPED_TEST(MainLoopContract, block_may_destroy_its_own_timer) {
    std::unique_ptr<platform::MainLoop::Timer> timer;
    const auto held = std::make_shared<std::string>("still held");
    timer = this->driven.loop().every(5ms, [this, &timer, held] {
        timer.reset();
        this->events.push_back(*held);
    });
    ASSERT_TRUE(this->happened(1));
    this->driven.settle();
    EXPECT_EQ(this->events.size(), 1u);
    EXPECT_EQ(held.use_count(), 1) << "the block lives on with what it captured";
}

TYPED_TEST(MainLoopContract, destroying_drops_what_waits_and_frees_it) {
    const auto held = std::make_shared<int>(1);
    this->driven.loop().async([this, held] { this->events.push_back("async"); });
    this->driven.loop().after(5ms, [this, held] { this->events.push_back("after"); });
    this->driven.destroyLoop();
    this->driven.settle();
    EXPECT_TRUE(this->events.empty());
    EXPECT_EQ(held.use_count(), 1);
}

TEST(QtMainLoopTest, turns_missed_while_the_computer_slept_are_not_made_up_for) {
    qt::QtMainLoop loop;
    int turns = 0;
    const auto timer = loop.every(20ms, [&turns] { ++turns; });
    const auto asleep = std::chrono::steady_clock::now();
    while (std::chrono::steady_clock::now() - asleep < 300ms) std::this_thread::yield();
    QCoreApplication::processEvents();
    EXPECT_EQ(turns, 1);
    ASSERT_TRUE(QTest::qWaitFor([&turns] { return turns >= 3; }, 5000));
    EXPECT_GE(std::chrono::steady_clock::now() - asleep, 330ms) << "the next ones come at their pace";
}

TEST(QtMainLoopTest, time_spent_before_the_loop_runs_counts_as_waited) {
    qt::QtMainLoop loop;
    bool ran = false;
    const auto handedIn = std::chrono::steady_clock::now();
    loop.after(50ms, [&ran] { ran = true; });
    while (std::chrono::steady_clock::now() - handedIn < 50ms) std::this_thread::yield();
    // Due by now: the next block, although it waits for less than 50 ms, comes after it.
    bool later = false;
    loop.after(20ms, [&later, &ran] {
        later = true;
        EXPECT_TRUE(ran);
    });
    EXPECT_TRUE(QTest::qWaitFor([&later] { return later; }, 5000));
}

TEST(QtMainLoopTest, event_loop_inside_a_block_runs_the_blocks_behind_it) {
    qt::QtMainLoop loop;
    std::vector<std::string> events;
    loop.async([&] {
        EXPECT_TRUE(QTest::qWaitFor([&events] { return events.size() == 2; }, 5000));
        events.push_back("outer");
    });
    loop.async([&] { events.push_back("second"); });
    loop.async([&] { events.push_back("third"); });
    EXPECT_TRUE(QTest::qWaitFor([&events] { return events.size() == 3; }, 5000));
    EXPECT_EQ(events, (std::vector<std::string>{"second", "third", "outer"}));
    loop.async([&] { events.push_back("afterwards"); });
    EXPECT_TRUE(QTest::qWaitFor([&events] { return events.size() == 4; }, 5000));
}

TEST(QtMainLoopTest, block_may_destroy_the_loop_and_nothing_of_it_runs_then) {
    auto loop = std::make_unique<qt::QtMainLoop>();
    std::vector<std::string> events;
    loop->after(std::chrono::milliseconds(1), [&] { events.push_back("delayed"); });
    loop->async([&] {
        loop.reset();
        events.push_back("destroyed");
    });
    loop->async([&] { events.push_back("behind"); });
    bool passed = false;
    QTimer::singleShot(20, Qt::PreciseTimer, [&passed] { passed = true; });
    EXPECT_TRUE(QTest::qWaitFor([&passed] { return passed; }, 5000));
    EXPECT_EQ(events, std::vector<std::string>{"destroyed"});
}

TEST(QtMainLoopTest, timers_fall_silent_with_their_loop) {
    auto loop = std::make_unique<qt::QtMainLoop>();
    int turns = 0;
    const auto timer = loop->every(1ms, [&turns] { ++turns; });
    loop.reset();
    bool passed = false;
    QTimer::singleShot(20, Qt::PreciseTimer, [&passed] { passed = true; });
    EXPECT_TRUE(QTest::qWaitFor([&passed] { return passed; }, 5000));
    EXPECT_EQ(turns, 0);
}

}  // namespace
}  // namespace halvane::test
