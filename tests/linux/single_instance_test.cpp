#include "linux/InstanceLock.h"
#include "linux/InstanceMessage.h"
#include "linux/LocalSocket.h"
#include "linux/UnixSingleInstance.h"
#include "support/Eventually.h"
#include "support/ManualMainLoop.h"
#include "support/RecordingLog.h"
#include "support/TemporaryDirectory.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>

#include <atomic>
#include <fstream>
#include <memory>
#include <optional>
#include <vector>

namespace halvane::linux {
namespace {

using platform::SingleInstance;
using test::eventually;
using Role = SingleInstance::Role;
using Arguments = std::vector<std::string>;
using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

class SingleInstanceTest : public testing::Test {
protected:
    /// One start of the program, in the same process: locks and sockets tell no difference.
    struct Start {
        Start(const std::filesystem::path& directory, milliseconds patience = std::chrono::seconds(20))
            : instance(std::make_unique<UnixSingleInstance>(directory, loop, log, patience)) {}
        Role enter(const Arguments& arguments = {}) {
            return instance->enter(arguments, [this](const Arguments& later) { taken.push_back(later); });
        }
        test::ManualMainLoop loop;
        test::RecordingLog log;
        std::vector<Arguments> taken;
        std::unique_ptr<UnixSingleInstance> instance;
    };

    test::TemporaryDirectory home;
    const std::filesystem::path directory = home.path() / "run" / "halvane";
};

TEST_F(SingleInstanceTest, a_later_start_hands_its_arguments_over_on_the_main_loop) {
    Start first(directory);
    ASSERT_EQ(first.enter({"not", "handed", "to", "itself"}), Role::First);
    const Arguments rows[] = {{}, {"--server", "https://职场.example"}, {"", "two\nlines", ""}, {std::string(60000, 'x')}};
    std::vector<Arguments> expected;
    for (const auto& arguments : rows) {
        EXPECT_EQ(Start(directory).enter(arguments), Role::Later);
        expected.push_back(arguments);
    }
    EXPECT_EQ(first.taken, std::vector<Arguments>{}) << "before the main loop ran";
    first.loop.runPending();
    EXPECT_EQ(first.taken, expected);
    EXPECT_EQ(first.log.lines(), std::vector<std::string>{});
}

TEST_F(SingleInstanceTest, arguments_beyond_the_limit_only_raise_the_first) {
    Start first(directory);
    ASSERT_EQ(first.enter(), Role::First);
    Start later(directory);
    EXPECT_EQ(later.enter({std::string(70000, 'x')}), Role::Later);
    EXPECT_TRUE(later.log.contains("too long"));
    first.loop.runPending();
    EXPECT_EQ(first.taken, std::vector<Arguments>{Arguments{}});
}

TEST_F(SingleInstanceTest, of_starts_at_the_same_moment_exactly_one_is_first) {
    for (int round = 0; round < 10; ++round) {
        constexpr int kStarts = 6;
        std::vector<std::unique_ptr<Start>> starts;
        for (int i = 0; i < kStarts; ++i) starts.push_back(std::make_unique<Start>(directory));
        std::atomic<int> firsts = 0;
        Start* winner = nullptr;
        {
            std::vector<std::jthread> threads;
            for (auto& start : starts) {
                threads.emplace_back([&firsts, &winner, one = start.get()] {
                    if (one->enter({"hello"}) != Role::First) return;
                    if (++firsts == 1) winner = one;
                });
            }
        }
        ASSERT_EQ(firsts, 1) << "round " << round;
        winner->loop.runPending();
        EXPECT_EQ(winner->taken.size(), static_cast<std::size_t>(kStarts - 1)) << "round " << round;
    }
}

TEST_F(SingleInstanceTest, what_a_dead_client_left_behind_is_no_client) {
    { EXPECT_EQ(Start(directory).enter(), Role::First); }
    std::filesystem::remove(directory / "instance.socket");
    std::ofstream(directory / "instance.socket") << "a file in the socket's place";
    Start next(directory);
    const auto begin = Clock::now();
    EXPECT_EQ(next.enter(), Role::First);
    EXPECT_LT(Clock::now() - begin, std::chrono::seconds(1));
    EXPECT_EQ(Start(directory).enter({"x"}), Role::Later);
    struct stat status {};
    ASSERT_EQ(::stat((directory / "instance.socket").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0600U);
}

TEST_F(SingleInstanceTest, a_client_that_hangs_is_replaced_by_exactly_one) {
    std::filesystem::create_directories(directory);
    for (const bool listens : {true, false}) {
        SCOPED_TRACE(listens ? "listens and never answers" : "never listened");
        InstanceLock hanging(directory);
        ASSERT_EQ(hanging.tryTake(), InstanceLock::Outcome::Taken);
        const auto socket = listens ? LocalSocket::listenAt(directory / "instance.socket") : LocalSocket();
        if (!listens) std::filesystem::remove(directory / "instance.socket");

        constexpr milliseconds kPatience{300};
        Start one(directory, kPatience);
        Start other(directory, kPatience);
        Role roles[2];
        const auto begin = Clock::now();
        {
            const std::jthread first([&] { roles[0] = one.enter({"one"}); });
            const std::jthread second([&] { roles[1] = other.enter({"other"}); });
        }
        EXPECT_GE(Clock::now() - begin, kPatience);
        EXPECT_NE(roles[0], roles[1]);
        Start& winner = roles[0] == Role::First ? one : other;
        winner.loop.runPending();
        EXPECT_EQ(winner.taken.size(), 1U);
        EXPECT_TRUE(winner.log.contains("takes its place"));
        EXPECT_EQ(Start(directory).enter({"third"}), Role::Later);
    }
}

TEST_F(SingleInstanceTest, nonsense_on_the_socket_is_dropped_and_harms_nothing) {
    Start first(directory);
    ASSERT_EQ(first.enter(), Role::First);
    const std::pair<const char*, std::string> rows[] = {
        {"nothing", ""},
        {"half a header", std::string("\0\0", 2)},
        {"more than the limit", "\x7F\xFF\xFF\xFF" + std::string(100, 'x')},
        {"less than announced", std::string("\0\0\0\x08", 4) + "abc"},
        {"lengths that do not add up", std::string("\0\0\0\x06\0\0\0\x09xy", 10)},
        {"text", "GET / HTTP/1.1\r\n\r\n"},
    };
    for (const auto& [name, bytes] : rows) {
        SCOPED_TRACE(name);
        const auto caller = LocalSocket::connectTo(directory / "instance.socket");
        ASSERT_TRUE(caller);
        ASSERT_TRUE(caller.send(bytes, Clock::now() + std::chrono::seconds(20)));
        ::shutdown(caller.descriptor(), SHUT_WR);
        EXPECT_EQ(caller.receive(1, Clock::now() + std::chrono::seconds(20)), std::nullopt);
    }
    // One that keeps its line open and silent is given up in time for the next.
    const auto silent = LocalSocket::connectTo(directory / "instance.socket");
    EXPECT_EQ(Start(directory, UnixSingleInstance::kPatience).enter({"real"}), Role::Later);
    first.loop.runPending();
    EXPECT_EQ(first.taken, std::vector<Arguments>{Arguments{"real"}});
}

TEST_F(SingleInstanceTest, another_user_is_not_answered) {
    Start first(directory);
    ASSERT_EQ(first.enter(), Role::First);
    if (::geteuid() != 0) GTEST_SKIP() << "only root can become another user";
    // Doors open that are shut in life, so that nothing but the look at the caller is left.
    for (auto path = directory; path != path.root_path(); path = path.parent_path()) {
        if (path.string().starts_with(home.path().string())) ::chmod(path.c_str(), 0755);
    }
    ::chmod((directory / "instance.socket").c_str(), 0777);
    sockaddr_un address{AF_UNIX, {}};
    (directory / "instance.socket").string().copy(address.sun_path, sizeof address.sun_path - 1);
    const auto message = InstanceMessage::encode({"foreign"}).value();
    const pid_t child = ::fork();
    if (child == 0) {
        char answer = 0;
        const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
        if (::setuid(12345) != 0 || ::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) ::_exit(9);
        [[maybe_unused]] const auto sent = ::send(socket, message.data(), message.size(), MSG_NOSIGNAL);
        ::_exit(::recv(socket, &answer, 1, 0) == 1 ? 1 : 0);
    }
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(WEXITSTATUS(status), 0) << "1: it was answered; 9: it did not get so far";
    first.loop.runPending();
    EXPECT_EQ(first.taken, std::vector<Arguments>{});
}

TEST_F(SingleInstanceTest, a_directory_that_cannot_be_used_makes_every_start_a_first_one) {
    std::filesystem::create_directories(directory.parent_path());
    std::ofstream(directory) << "a file in the directory's place";
    for (int i = 0; i < 2; ++i) {
        Start start(directory);
        EXPECT_EQ(start.enter(), Role::First);
        EXPECT_TRUE(start.log.contains("other starts are not noticed"));
    }
}

TEST_F(SingleInstanceTest, a_path_longer_than_a_socket_address_works) {
    const auto deep = directory / std::string(120, 'd');
    Start first(deep);
    ASSERT_EQ(first.enter(), Role::First);
    EXPECT_EQ(Start(deep).enter({"x"}), Role::Later);
    first.loop.runPending();
    EXPECT_EQ(first.taken.size(), 1U);
}

TEST_F(SingleInstanceTest, nothing_is_handed_over_after_the_end_which_the_callback_may_bring_about) {
    Start first(directory);
    ASSERT_EQ(first.enter(), Role::First);
    ASSERT_EQ(Start(directory).enter({"late"}), Role::Later);
    first.instance.reset();
    first.loop.runPending();
    EXPECT_EQ(first.taken, std::vector<Arguments>{});

    Start second(directory);
    ASSERT_EQ(second.instance->enter({}, [&](const Arguments&) { second.instance.reset(); }), Role::First);
    ASSERT_EQ(Start(directory).enter(), Role::Later);
    second.loop.runPending();
    EXPECT_FALSE(second.instance);
}

}  // namespace
}  // namespace halvane::linux
