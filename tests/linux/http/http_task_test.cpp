#include "linux/http/HttpFixture.h"

#include <atomic>

namespace halvane::linux_http {
namespace {

using platform::HttpProgress;
using platform::HttpTask;
using test::LoopbackConnection;
using test::LoopbackServer;
using test::okReply;

/// Tasks in all their states: what starts, what ends, in which order, and how often.
class HttpTaskLife : public HttpFixture {
protected:
    /// A server that answers only when `answer` is open.
    LoopbackServer::Script gated() {
        return [this](LoopbackConnection& connection) {
            while (!connection.readRequest().empty()) {
                log.add("request");
                if (!answer.pass() || !connection.send(okReply(""))) return;
            }
        };
    }
    std::shared_ptr<HttpTask> make(const std::string& name, const std::string& url) {
        return session->dataTask({.url = url},
                                 {.onCompletion = [this, name](auto result) { log.add(name + " " + std::to_string(codeOf(result))); }});
    }
    /// Runs what the result queue holds, so that an event too many would be there.
    void drain() {
        Gate drained;
        queue->async([&] { drained.open(); });
        ASSERT_TRUE(drained.pass());
    }
    [[nodiscard]] std::vector<unsigned long> openTasks() const {
        std::vector<unsigned long> numbers;
        for (const auto& task : session->tasks()) numbers.push_back(task->taskIdentifier());
        return numbers;
    }

    EventLog log;
    Gate answer;
};

using Events = std::vector<std::string>;
using Numbers = std::vector<unsigned long>;

TEST_F(HttpTaskLife, tasks_count_from_one_and_wait_to_be_resumed) {
    LoopbackServer server(LoopbackServer::replying(okReply("")));
    makeSession();
    const auto first = make("first", server.url());
    const auto second = make("second", server.url());
    EXPECT_EQ(openTasks(), (Numbers{1, 2}));
    second->resume();
    second->resume();
    ASSERT_TRUE(log.await(1));
    drain();
    EXPECT_EQ(log.events(), Events{"second 0"});
    EXPECT_EQ(openTasks(), Numbers{1});
    EXPECT_EQ(server.requests().size(), 1U);
    makeSession();
    EXPECT_EQ(make("other", server.url())->taskIdentifier(), 1U) << "each session counts for itself";
}

TEST_F(HttpTaskLife, above_the_limit_tasks_wait_their_turn_in_order) {
    LoopbackServer server(gated());
    makeSession({}, 2);
    for (const char* path : {"/1", "/2", "/3", "/4", "/5"}) make(path, server.url(path))->resume();
    ASSERT_TRUE(log.await(2));
    EXPECT_EQ(openTasks(), (Numbers{1, 2, 3, 4, 5})) << "waiting counts as running";
    EXPECT_EQ(server.requests().size(), 2U);
    session->setMaximumConcurrentTasks(3);
    ASSERT_TRUE(log.await(3));
    EXPECT_EQ(server.requests().size(), 3U);
    EXPECT_TRUE(server.requests()[2].starts_with("GET /3 "));
    session->setMaximumConcurrentTasks(0);  // one at a time from now on
    answer.open();
    ASSERT_TRUE(log.await(10));
    EXPECT_TRUE(server.requests()[3].starts_with("GET /4 "));
    EXPECT_TRUE(server.requests()[4].starts_with("GET /5 "));
    EXPECT_EQ(openTasks(), Numbers{});
}

TEST_F(HttpTaskLife, cancelled_in_any_state_a_task_ends_once) {
    LoopbackServer server(gated());
    makeSession({}, 1);
    const auto running = make("running", server.url("/running"));
    const auto waiting = make("waiting", server.url("/waiting"));
    const auto suspended = make("suspended", server.url("/suspended"));
    running->resume();
    waiting->resume();
    ASSERT_TRUE(log.await(1));
    for (const auto& task : {suspended, waiting, running}) {
        task->cancel();
        task->cancel();
        task->resume();
    }
    ASSERT_TRUE(log.await(4));
    for (const auto& task : {suspended, waiting, running}) task->cancel();
    drain();
    EXPECT_EQ(log.events(), (Events{"request", "suspended -999", "waiting -999", "running -999"}));
    EXPECT_EQ(server.requests().size(), 1U);
    EXPECT_EQ(openTasks(), Numbers{});
    answer.open();
    EXPECT_EQ(codeOf(get(server.url("/after"))), 0) << "the place is free again";
}

TEST_F(HttpTaskLife, cancelled_before_its_completion_was_told_a_task_is_cancelled) {
    LoopbackServer server(LoopbackServer::replying(okReply("")));
    makeSession();
    Gate busy;
    Gate entered;
    queue->async([&] {
        entered.open();
        busy.pass();
    });
    ASSERT_TRUE(entered.pass());
    const int before = queue->posted();
    const auto task = make("late", server.url());
    task->resume();
    ASSERT_TRUE(queue->awaitPosted(before + 1)) << "the completion is on its way";
    EXPECT_EQ(openTasks(), Numbers{1});
    task->cancel();
    busy.open();
    ASSERT_TRUE(log.await(1));
    EXPECT_EQ(log.events(), Events{"late -999"});
}

TEST_F(HttpTaskLife, inside_its_own_completion_a_task_is_over) {
    LoopbackServer server(LoopbackServer::replying(okReply("")));
    makeSession();
    std::shared_ptr<HttpTask> task;
    task = session->dataTask({.url = server.url()}, {.onCompletion = [&](auto result) {
                                 log.add("done " + std::to_string(codeOf(result)));
                                 task->cancel();
                                 task->resume();
                                 log.add("open " + std::to_string(session->tasks().size()));
                                 make("next", server.url())->resume();
                             }});
    task->resume();
    ASSERT_TRUE(log.await(3));
    drain();
    EXPECT_EQ(log.events(), (Events{"done 0", "open 0", "next 0"}));
}

TEST_F(HttpTaskLife, an_invalidated_session_ends_all_tasks_and_those_to_come) {
    LoopbackServer server(gated());
    makeSession({}, 1);
    const auto running = make("running", server.url());
    running->resume();
    make("waiting", server.url())->resume();
    make("suspended", server.url());
    ASSERT_TRUE(log.await(1));
    session->invalidateCancelingTasks();
    make("late", server.url())->resume();
    ASSERT_TRUE(log.await(5));
    drain();
    auto events = log.events();
    std::ranges::sort(events);
    answer.open();
    EXPECT_EQ(events, (Events{"late -999", "request", "running -999", "suspended -999", "waiting -999"}));
    EXPECT_EQ(openTasks(), Numbers{});
}

TEST_F(HttpTaskLife, a_destroyed_session_cancels_its_tasks_and_tells_them_so) {
    LoopbackServer server(gated());
    makeSession({}, 1);
    const auto running = make("running", server.url());
    running->resume();
    make("waiting", server.url())->resume();
    const auto suspended = make("suspended", server.url());
    ASSERT_TRUE(log.await(1));
    session.reset();
    ASSERT_TRUE(log.await(4));
    running->cancel();
    suspended->resume();
    drain();
    answer.open();
    EXPECT_EQ(log.events(), (Events{"request", "waiting -999", "suspended -999", "running -999"}));
}

TEST_F(HttpTaskLife, a_session_may_be_destroyed_inside_any_of_its_callbacks) {
    LoopbackServer server(LoopbackServer::replying(okReply(std::string(500'000, 'x'))));
    for (const std::string place : {"completion", "progress", "destination"}) {
        SCOPED_TRACE(place);
        makeSession();
        EventLog ends;
        const auto at = [&](const char* here) {
            if (place == here) session.reset();
        };
        const auto task = session->downloadTask({.url = server.url()}, {.destination =
                                                                            [&](const auto&) {
                                                                                at("destination");
                                                                                return std::filesystem::path(::getenv("HOME")) / "file";
                                                                            },
                                                                        .onProgress = [&](const HttpProgress&) { at("progress"); },
                                                                        .onCompletion =
                                                                            [&](auto) {
                                                                                at("completion");
                                                                                ends.add("end");
                                                                            }});
        task->resume();
        ASSERT_TRUE(ends.await(1));
        drain();
        EXPECT_EQ(ends.events().size(), 1U);
        EXPECT_FALSE(session);
    }
}

TEST_F(HttpTaskLife, what_callbacks_hold_goes_with_the_completion) {
    LoopbackServer server(LoopbackServer::replying(okReply("")));
    makeSession();
    auto held = std::make_shared<int>(0);
    const std::weak_ptr<int> watched = held;
    const auto ended = session->dataTask(
        {.url = server.url()}, {.onUploadProgress = [held](const auto&) {}, .onCompletion = [this, held](auto) { log.add("end"); }});
    const auto never = session->dataTask({.url = server.url()}, {.onCompletion = [this, held](auto) { log.add("end"); }});
    held.reset();
    ended->resume();
    ASSERT_TRUE(log.await(1));
    never->cancel();
    ASSERT_TRUE(log.await(2));
    drain();
    EXPECT_TRUE(watched.expired());
}

TEST_F(HttpTaskLife, progress_comes_in_order_and_never_after_the_end) {
    LoopbackServer server(LoopbackServer::replying(okReply(std::string(8'000'000, 'd'))));
    queue = std::make_shared<test::ThreadQueue>(3);  // progress of one task is in order on a concurrent queue too
    makeSession();
    struct Seen {
        std::vector<std::uint64_t> up;
        std::vector<std::uint64_t> down;
        std::atomic<int> inside{0};
        bool overlapped = false;
    } seen;
    const auto note = [&seen](std::vector<std::uint64_t>& list, const HttpProgress& progress, std::uint64_t total) {
        seen.overlapped |= seen.inside++ != 0 || progress.total != total;
        list.push_back(progress.completed);
        --seen.inside;
    };
    const auto task = session->dataTask({.method = "POST", .url = server.url(), .body = std::string(9'000'000, 'u')},
                                        {.onUploadProgress = [&](const HttpProgress& p) { note(seen.up, p, 9'000'000); },
                                         .onDownloadProgress = [&](const HttpProgress& p) { note(seen.down, p, 8'000'000); },
                                         .onCompletion =
                                             [&](auto result) {
                                                 seen.overlapped |= seen.inside != 0;
                                                 log.add("end " + std::to_string(codeOf(result)));
                                             }});
    task->resume();
    ASSERT_TRUE(log.await(1));
    const std::size_t before = seen.up.size() + seen.down.size();
    queue.reset();
    session.reset();
    EXPECT_EQ(log.events(), Events{"end 0"});
    EXPECT_EQ(seen.up.size() + seen.down.size(), before);
    EXPECT_FALSE(seen.overlapped);
    ASSERT_FALSE(seen.up.empty() || seen.down.empty());
    EXPECT_TRUE(std::ranges::is_sorted(seen.up) && std::ranges::is_sorted(seen.down));
    EXPECT_EQ(seen.up.back(), 9'000'000U);
    EXPECT_EQ(seen.down.back(), 8'000'000U);
}

TEST_F(HttpTaskLife, on_a_concurrent_queue_no_completion_waits_for_another) {
    EventLog answered;
    LoopbackServer server(LoopbackServer::answering([&](const std::string&) {
        answered.add("request");
        return okReply("");
    }));
    queue = std::make_shared<test::ThreadQueue>(4);
    makeSession();
    // All four end while the queue is blocked, so that they are found together.
    Gate start;
    std::atomic<int> inside{0};
    Gate all;
    for (int i = 0; i < 4; ++i) queue->async([&] { start.pass(); });
    for (int i = 0; i < 4; ++i) {
        session
            ->dataTask({.url = server.url()}, {.onCompletion =
                                                   [&](auto) {
                                                       if (++inside == 4) all.open();
                                                       log.add(all.pass() ? "met" : "alone");
                                                   }})
            ->resume();
    }
    ASSERT_TRUE(answered.await(4));
    start.open();
    ASSERT_TRUE(log.await(4));
    EXPECT_EQ(log.events(), Events(4, "met"));
}

TEST_F(HttpTaskLife, nor_does_one_that_was_cancelled_while_it_waited) {
    // No network event comes to the rescue: the one task that runs hears nothing, on a connection that stood before.
    EventLog arrived;
    LoopbackServer silent([&](LoopbackConnection& connection) {
        connection.readRequest();
        connection.send(okReply(""));
        connection.readRequest();
        arrived.add("request");
        connection.stall();
    });
    queue = std::make_shared<test::ThreadQueue>(2);
    makeSession({}, 1);
    get(silent.url());
    Gate second;
    std::vector<std::shared_ptr<platform::HttpTask>> tasks;
    for (int i = 0; i < 3; ++i) {
        tasks.push_back(session->dataTask({.url = silent.url()}, {.onCompletion = [&, i](const auto&) {
                                              if (i == 1) log.add(second.pass() ? "first after second" : "first alone");
                                              if (i == 2) second.open();
                                          }}));
        tasks.back()->resume();
    }
    ASSERT_TRUE(arrived.await(1));
    Gate begin;
    for (int i = 0; i < 2; ++i) queue->async([&] { begin.pass(); });  // both are cancelled before anything is told
    tasks[1]->cancel();
    tasks[2]->cancel();
    begin.open();
    ASSERT_TRUE(log.await(1));
    EXPECT_EQ(log.events(), Events{"first after second"});
    session.reset();
}

TEST_F(HttpTaskLife, many_threads_may_use_one_session) {
    LoopbackServer server(LoopbackServer::replying(okReply("x")));
    makeSession({}, 5);
    constexpr int kThreads = 4;
    constexpr int kEach = 100;
    std::atomic<int> succeeded{0};
    std::atomic<int> cancelled{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < kEach; ++i) {
                const auto task = session->dataTask({.url = server.url()}, {.onCompletion = [&](auto result) {
                                                        ++(result.error ? cancelled : succeeded);
                                                        log.add("end");
                                                    }});
                task->resume();
                if (i % 4 == 0) task->cancel();
                if (i % 16 == 0) session->setMaximumConcurrentTasks(1 + i % 7);
                if (i % 32 == 0) static_cast<void>(session->tasks());
            }
        });
    }
    for (auto& thread : threads) thread.join();
    ASSERT_TRUE(log.await(kThreads * kEach));
    drain();
    EXPECT_EQ(succeeded + cancelled, kThreads * kEach);
    EXPECT_GE(succeeded, kThreads * kEach * 3 / 4);
    EXPECT_EQ(openTasks(), Numbers{});
}

}  // namespace
}  // namespace halvane::linux_http
