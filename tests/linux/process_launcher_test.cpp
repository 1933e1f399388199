#include "linux/PosixProcessLauncher.h"

#include "linux/Pipe.h"
#include "support/Eventually.h"
#include "support/TemporaryDirectory.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <fstream>
#include <map>
#include <memory>
#include <mutex>

namespace halvane::linux {
namespace {

namespace fs = std::filesystem;
using platform::ProcessRequest;
using test::eventually;

class PosixProcessLauncherTest : public testing::Test {
protected:
    const test::TemporaryDirectory directory;
    const fs::path root = directory.path() / "root";
    PosixProcessLauncher launcher{root};

    /// Every test ends with its children collected: none may stay as a zombie.
    void TearDown() override { EXPECT_TRUE(eventually(noChildIsLeft)); }

    void place(const fs::path& path, const std::string& content, fs::perms mode = fs::perms::owner_all) {
        fs::create_directories(path.parent_path());
        std::ofstream(path) << content;
        fs::permissions(path, mode);
    }
    static ProcessRequest shell(const std::string& script) { return {.launchPath = "/bin/sh", .arguments = {"-c", script}}; }
    std::string output(const ProcessRequest& request) {
        const auto bytes = launcher.readOutput(request);
        return bytes ? *bytes : "error: " + bytes.error().description;
    }
    /// Whether every child of this process has been collected.
    static bool noChildIsLeft() {
        siginfo_t info{};
        return ::waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) < 0 && errno == ECHILD;
    }
};

TEST_F(PosixProcessLauncherTest, the_six_tools_come_from_the_tool_root_alone_and_others_may) {
    place(root / "usr/sbin/sysctl", "#!/bin/sh\necho ours \"$0\"");
    place(root / "bin/echo", "#!/bin/sh\necho from the root");
    EXPECT_EQ(output({.launchPath = "/usr/sbin/sysctl"}), "ours " + (root / "usr/sbin/sysctl").string() + "\n");
    EXPECT_EQ(output({.launchPath = "/bin/echo"}), "from the root\n");
    EXPECT_EQ(output({.launchPath = "/usr/bin/printf", .arguments = {"as it stands"}}), "as it stands");
    // Without ours none is started, although Linux has one of that name.
    fs::remove(root / "usr/sbin/sysctl");
    const auto missing = launcher.readOutput({.launchPath = "/usr/sbin/sysctl", .arguments = {"-n", "kernel.ostype"}});
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.error().code, ENOENT);
    EXPECT_NE(missing.error().description.find("/usr/sbin/sysctl"), std::string::npos);
}

TEST_F(PosixProcessLauncherTest, what_cannot_be_started_says_why) {
    place(directory.path() / "data", "#!/bin/sh\n", fs::perms::owner_read);
    place(directory.path() / "bare", "echo no interpreter named");
    place(directory.path() / "lost", "#!/no/such/interpreter\n");
    const std::tuple<const char*, ProcessRequest, int> rows[] = {
        {"missing", {.launchPath = "/no/such/program"}, ENOENT},
        {"not executable", {.launchPath = directory.path() / "data"}, EACCES},
        {"a directory", {.launchPath = directory.path()}, EACCES},
        {"no shebang", {.launchPath = directory.path() / "bare"}, ENOEXEC},
        {"interpreter missing", {.launchPath = directory.path() / "lost"}, ENOENT},
        {"no path", {.launchPath = ""}, EINVAL},
        {"NUL in an argument", {.launchPath = "/bin/echo", .arguments = {std::string("a\0b", 3)}}, EINVAL},
        {"no name", {.launchPath = "/bin/echo", .environment = {{"", "x"}}}, EINVAL},
        {"= in a name", {.launchPath = "/bin/echo", .environment = {{"A=B", "x"}}}, EINVAL},
        {"too much", {.launchPath = "/bin/echo", .arguments = {std::string(3 << 20, 'x')}}, E2BIG},
    };
    for (const auto& [name, request, code] : rows) {
        SCOPED_TRACE(name);
        const auto read = launcher.readOutput(request);
        ASSERT_FALSE(read);
        EXPECT_EQ(read.error().code, code) << read.error().description;
        const auto launched = launcher.launch(request, [](int) { ADD_FAILURE() << "ended without having begun"; });
        ASSERT_FALSE(launched);
        EXPECT_EQ(launched.error().code, code) << launched.error().description;
    }
}

TEST_F(PosixProcessLauncherTest, arguments_arrive_verbatim_and_additions_replace_variables) {
    EXPECT_EQ(output({.launchPath = "/usr/bin/printf", .arguments = {"[%s]", "|", "'Capacity'", "$HOME *", "", "职\n"}}),
              "[|]['Capacity'][$HOME *][][职\n]");
    ::setenv("HALVANE_TEST_VALUE", "inherited", 1);
    auto request = shell("env | grep HALVANE_TEST_VALUE");
    EXPECT_EQ(output(request), "HALVANE_TEST_VALUE=inherited\n");
    request.environment = {{"HALVANE_TEST_VALUE", "first"}, {"HALVANE_TEST_VALUE", "added = it"}};
    EXPECT_EQ(output(request), "HALVANE_TEST_VALUE=added = it\n");
    ::unsetenv("HALVANE_TEST_VALUE");
}

TEST_F(PosixProcessLauncherTest, output_is_read_to_its_end_whatever_becomes_of_the_child) {
    const std::tuple<const char*, std::string, std::string> rows[] = {
        {"failing", "echo said; exit 3", "said\n"},
        {"killed", "echo said; kill -9 $$", "said\n"},
        {"silent", "exit 0", ""},
        {"no UTF-8", R"(printf 'a\377\000\303')", std::string("a\xFF\0\xC3", 4)},
        {"errors are not output", "echo unseen 2>/dev/null >&2; echo seen", "seen\n"},
        {"a grandchild keeps the pipe", "(read line < fifo; echo late) & echo early; echo > fifo", "early\nlate\n"},
    };
    ASSERT_EQ(::mkfifo((directory.path() / "fifo").c_str(), 0600), 0);
    for (const auto& [name, script, expected] : rows)
        EXPECT_EQ(output(shell("cd " + directory.path().string() + "; " + script)), expected) << name;
}

TEST_F(PosixProcessLauncherTest, the_end_of_the_output_is_not_the_end_of_the_child) {
    ASSERT_EQ(::mkfifo((directory.path() / "fifo").c_str(), 0600), 0);
    // The child closes its output and stays until the fifo is opened for writing.
    EXPECT_EQ(output(shell("echo done; exec >&-; read line < " + (directory.path() / "fifo").string())), "done\n");
    EXPECT_FALSE(noChildIsLeft());
    std::ofstream(directory.path() / "fifo") << "go\n";
}

TEST_F(PosixProcessLauncherTest, large_output_is_taken_and_endless_output_is_ended) {
    const auto most = launcher.readOutput(shell("head -c " + std::to_string(Pipe::kLargestOutput) + " /dev/zero"));
    ASSERT_TRUE(most) << most.error().description;
    EXPECT_EQ(most->size(), Pipe::kLargestOutput);
    const auto endless = launcher.readOutput({.launchPath = "/bin/cat", .arguments = {"/dev/zero"}});
    ASSERT_FALSE(endless);
    EXPECT_EQ(endless.error().code, EFBIG);
}

TEST_F(PosixProcessLauncherTest, a_child_begins_with_no_signal_blocked_or_ignored_and_no_descriptor_of_ours) {
    const int leaked = ::open("/dev/null", O_RDONLY);  // without close-on-exec, as a careless library opens it
    ASSERT_GT(leaked, 2);
    const auto previous = ::signal(SIGPIPE, SIG_IGN);
    sigset_t blocked;
    sigset_t before;
    ::sigemptyset(&blocked);
    ::sigaddset(&blocked, SIGTERM);
    ::pthread_sigmask(SIG_BLOCK, &blocked, &before);
    const auto signals = output({.launchPath = "/bin/grep", .arguments = {"-E", "^Sig(Blk|Ign)", "/proc/self/status"}});
    const auto maskOf = [&signals](const std::string& name) { return std::stoull(signals.substr(signals.find(name) + 8), nullptr, 16); };
    // ls itself opens one: the directory that it lists.
    const auto descriptors = output({.launchPath = "/bin/ls", .arguments = {"/proc/self/fd"}});
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    ::signal(SIGPIPE, previous);
    ::close(leaked);
    EXPECT_EQ(maskOf("SigBlk:"), 0U) << signals;
    // Beyond these stand two that the C library keeps for itself.
    EXPECT_EQ(maskOf("SigIgn:") & ((1ULL << 31) - 1), 0U) << signals;
    EXPECT_EQ(descriptors, "0\n1\n2\n3\n");
}

TEST_F(PosixProcessLauncherTest, output_is_read_although_our_own_standard_output_is_closed) {
    const int kept = ::dup(STDOUT_FILENO);
    ASSERT_EQ(::close(STDOUT_FILENO), 0);
    // One whose own descriptors, which may have got that number, are closed before it is given back.
    auto own = std::make_unique<PosixProcessLauncher>(root);
    const auto text = own->readOutput({.launchPath = "/bin/echo", .arguments = {"heard"}});
    own.reset();
    ::dup2(kept, STDOUT_FILENO);
    ::close(kept);
    ASSERT_TRUE(text);
    EXPECT_EQ(*text, "heard\n");
    while (::waitpid(-1, nullptr, 0) > 0) {
    }
}

TEST_F(PosixProcessLauncherTest, signals_do_not_cut_the_reading_short) {
    struct sigaction action {};
    struct sigaction before {};
    action.sa_handler = [](int) {};  // without SA_RESTART: reads return early
    ::sigaction(SIGUSR1, &action, &before);
    const auto text =
        output(shell("i=0; while [ $i -lt 50 ]; do kill -USR1 " + std::to_string(::getpid()) + "; echo $i; i=$((i+1)); done"));
    ::sigaction(SIGUSR1, &before, nullptr);
    EXPECT_TRUE(text.ends_with("48\n49\n")) << text;
}

TEST_F(PosixProcessLauncherTest, each_termination_is_told_once_with_the_exit_status) {
    std::mutex mutex;
    std::map<int, int> told;  // status to times
    const auto note = [&](int status) {
        const std::lock_guard lock(mutex);
        ++told[status];
    };
    for (int i = 0; i < 40; ++i) ASSERT_TRUE(launcher.launch(shell("exit " + std::to_string(i)), note));
    ASSERT_TRUE(launcher.launch(shell("kill -KILL $$"), note));
    ASSERT_TRUE(launcher.launch(shell("exit 255"), {}));
    EXPECT_TRUE(eventually([&] {
        const std::lock_guard lock(mutex);
        return told.size() == 41;
    }));
    const std::lock_guard lock(mutex);
    for (const auto& [status, times] : told) EXPECT_EQ(times, 1) << "status " << status;
    EXPECT_TRUE(told.contains(39));
    EXPECT_TRUE(told.contains(128 + SIGKILL));
}

TEST_F(PosixProcessLauncherTest, a_termination_may_start_the_next_program) {
    std::atomic<bool> ended = false;
    std::string text;
    ASSERT_TRUE(launcher.launch({.launchPath = "/bin/true"}, [&](int) {
        text = output({.launchPath = "/bin/echo", .arguments = {"next"}});
        EXPECT_TRUE(launcher.launch({.launchPath = "/bin/true"}, [&](int) { ended = true; }));
    }));
    EXPECT_TRUE(eventually([&] { return ended.load(); }));
    EXPECT_EQ(text, "next\n");
}

TEST_F(PosixProcessLauncherTest, destroying_the_launcher_waits_for_no_child_and_silences_it) {
    auto owned = std::make_unique<PosixProcessLauncher>(root);
    ASSERT_EQ(::mkfifo((directory.path() / "fifo").c_str(), 0600), 0);
    const auto waiting = shell("read line < " + (directory.path() / "fifo").string());
    ASSERT_TRUE(owned->launch(waiting, [](int) { ADD_FAILURE() << "told after the end"; }));
    owned.reset();
    std::ofstream(directory.path() / "fifo") << "go\n";
    EXPECT_GT(::waitpid(-1, nullptr, 0), 0);

    std::atomic<bool> destroyed = false;
    owned = std::make_unique<PosixProcessLauncher>(root);
    ASSERT_TRUE(owned->launch({.launchPath = "/bin/true"}, [&](int) {
        owned.reset();
        destroyed = true;
    }));
    EXPECT_TRUE(eventually([&] { return destroyed.load(); }));
}

TEST_F(PosixProcessLauncherTest, a_callback_that_reads_a_slow_tool_does_not_hold_up_the_end) {
    const fs::path note = directory.path() / "pid";
    std::atomic<int> code{0};
    auto own = std::make_unique<PosixProcessLauncher>(root);
    ASSERT_TRUE(own->launch(shell("true"), [&, raw = own.get()](int) {
        const auto output =
            raw->readOutput(shell("echo $$ >" + note.string() + ".new; mv " + note.string() + ".new " + note.string() + "; exec sleep 60"));
        code = output ? 0 : output.error().code;
    }));
    ASSERT_TRUE(eventually([&] { return fs::exists(note); }));
    const auto began = std::chrono::steady_clock::now();
    own.reset();
    EXPECT_EQ(code, ECANCELED);
    EXPECT_LT(std::chrono::steady_clock::now() - began, std::chrono::seconds(30)) << "as long as the tool";
    // The tool went on, and is nobody's any more.
    pid_t tool = 0;
    std::ifstream(note) >> tool;
    ASSERT_GT(tool, 0);
    EXPECT_EQ(::kill(tool, SIGKILL), 0);
    EXPECT_EQ(::waitpid(tool, nullptr, 0), tool);
}

}  // namespace
}  // namespace halvane::linux
