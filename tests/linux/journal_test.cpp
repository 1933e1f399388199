#include "linux/LocalSocket.h"
#include "linux/Pipe.h"
#include "linux/PosixProcessLauncher.h"
#include "linux/base/SystemLog.h"
#include "support/TemporaryDirectory.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>

#include <array>
#include <filesystem>
#include <functional>

namespace halvane::linux {
namespace {

constexpr const char* kSockets = "/run/systemd/journal";

/// The journal's two sockets in their places, with nobody but us behind them. Only in a mount namespace of the process's own.
class PretendedJournal {
public:
    PretendedJournal() : lines_(bound(SOCK_DGRAM, "socket")), streams_(bound(SOCK_STREAM, "stdout")) { ::listen(streams_.get(), 8); }

    /// A stream as a desktop gives it to a program, under the name of the program's entry.
    [[nodiscard]] static Descriptor streamOfTheDesktop() {
        Descriptor stream(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
        const auto address = addressOf("stdout");
        if (::connect(stream.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) return {};
        const std::string header = "com.halvane.Halvane.desktop\n\n6\n0\n0\n0\n0\n";
        return ::write(stream.get(), header.data(), header.size()) < 0 ? Descriptor() : std::move(stream);
    }
    /// "identifier: text" of all that has come, streams in the order of their beginning.
    [[nodiscard]] std::string heard() const {
        std::string all;
        for (std::string line = received(lines_.get()); !line.empty(); line = received(lines_.get()))
            all += field(line, "SYSLOG_IDENTIFIER=") + ": " + field(line, "MESSAGE=") + "\n";
        for (pollfd wait{streams_.get(), POLLIN, 0}; ::poll(&wait, 1, 0) > 0;) {
            const Descriptor stream(::accept4(streams_.get(), nullptr, nullptr, SOCK_CLOEXEC));
            const std::string text = received(stream.get());
            constexpr int kHeaderLines = 7;  // the first is the identifier
            std::size_t body = 0;
            for (int i = 0; i < kHeaderLines; ++i) body = text.find('\n', body) + 1;
            all += text.substr(0, text.find('\n')) + ": " + text.substr(body);
            if (!text.ends_with('\n') || body == text.size()) all += '\n';
        }
        return all;
    }

private:
    static sockaddr_un addressOf(const std::string& name) {
        sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
        const std::string path = std::string(kSockets) + "/" + name;
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        return address;
    }
    static Descriptor bound(int type, const std::string& name) {
        Descriptor made(::socket(AF_UNIX, type | SOCK_CLOEXEC, 0));
        const auto address = addressOf(name);
        return ::bind(made.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 ? std::move(made) : Descriptor();
    }
    static std::string received(int socket) {
        std::array<char, 4096> buffer{};
        const auto got = ::recv(socket, buffer.data(), buffer.size(), MSG_DONTWAIT);
        return got > 0 ? std::string(buffer.data(), static_cast<std::size_t>(got)) : "";
    }
    static std::string field(const std::string& entry, const std::string& name) {
        const auto begin = entry.find(name);
        return begin == std::string::npos ? "?" : entry.substr(begin + name.size(), entry.find('\n', begin) - begin - name.size());
    }

    const Descriptor lines_;
    const Descriptor streams_;
};

/// Whether this process has the directory of the journal to itself from now on.
bool hidesTheJournal() {
    if (::unshare(CLONE_NEWNS) != 0 && ::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
    if (::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) return false;
    if (::mount("none", "/run", "tmpfs", 0, nullptr) != 0) return false;
    return std::filesystem::create_directories(kSockets);
}

/// What the client says on each way: the log, standard output and error, and a tool's standard error.
void sayEverything() {
    SystemLog::nameStandardStreams();
    SystemLog log;
    log.write("line");
    const test::TemporaryDirectory noTools;
    PosixProcessLauncher launcher(noTools.path());
    (void)launcher.readOutput({.launchPath = "/bin/sh", .arguments = {"-c", "echo complaint >&2"}});
    (void)!::write(STDERR_FILENO, "end\n", 4);
}

class JournalTest : public testing::Test {
protected:
    /// What a journal heard of a process that runs `setUp` and then says everything; absent where the system forbids
    /// mount namespaces.
    static std::optional<std::string> heardOf(const std::function<void()>& setUp) {
        auto pipe = Pipe::open("tell what was heard").value();
        const pid_t child = ::fork();
        if (child == 0) {
            std::string report = "forbidden";
            if (hidesTheJournal()) {
                const PretendedJournal journal;
                setUp();
                sayEverything();
                report = journal.heard();
            }
            (void)!::write(pipe.writeEnd.get(), report.data(), report.size());
            ::_exit(0);
        }
        pipe.writeEnd.close();
        const auto report = Pipe::readToEnd(pipe.readEnd.get(), "hear it");
        ::waitpid(child, nullptr, 0);
        return !report || *report == "forbidden" ? std::nullopt : std::optional(*report);
    }
    static void lead(int descriptor, const char* file) {
        const Descriptor opened(::open(file, O_RDWR | O_CREAT | O_CLOEXEC, 0600));
        ::dup2(opened.get(), descriptor);
    }
};

TEST_F(JournalTest, everything_stands_under_one_name_whatever_the_desktop_calls_the_program) {
    const auto heard = heardOf([] {
        const auto stream = PretendedJournal::streamOfTheDesktop();
        ::dup2(stream.get(), STDOUT_FILENO);
        ::dup2(stream.get(), STDERR_FILENO);
    });
    if (!heard) GTEST_SKIP() << "no mount namespaces here";
    EXPECT_EQ(*heard,
              "halvane: line\n"
              "com.halvane.Halvane.desktop: \n"
              "halvane: complaint\nend\n");
}

TEST_F(JournalTest, standard_error_that_leads_nowhere_is_given_to_the_journal) {
    for (const bool closed : {false, true}) {
        const auto heard = heardOf([closed] { closed ? static_cast<void>(::close(STDERR_FILENO)) : lead(STDERR_FILENO, "/dev/null"); });
        if (!heard) GTEST_SKIP() << "no mount namespaces here";
        EXPECT_EQ(*heard, "halvane: line\nhalvane: complaint\nend\n") << closed;
    }
}

TEST_F(JournalTest, file_that_somebody_chose_stays_standard_error) {
    const test::TemporaryDirectory directory;
    const auto file = (directory.path() / "file").string();
    const auto heard = heardOf([&file] { lead(STDERR_FILENO, file.c_str()); });
    if (!heard) GTEST_SKIP() << "no mount namespaces here";
    EXPECT_EQ(*heard, "halvane: line\n");
    const Descriptor kept(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
    EXPECT_EQ(Pipe::readToEnd(kept.get(), "read it").value(), "halvane: line\ncomplaint\nend\n");
}

}  // namespace
}  // namespace halvane::linux
