#include "linux/PkexecChild.h"

#include "linux/ChildStart.h"
#include "linux/Pipe.h"
#include "linux/ProcessStatus.h"

#include <poll.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <iterator>
#include <thread>

namespace halvane::linux {

namespace {

using platform::OSStatus;

// pkexec's own exit codes.
constexpr int kDismissed = 126;
constexpr int kNotStarted = 127;

/// False when it has not closed in time, or before `stop` became readable.
bool markerCloses(int marker, std::chrono::milliseconds longest, int stop = -1) {
    pollfd waits[] = {{marker, POLLIN, 0}, {stop, POLLIN, 0}};
    const auto end = std::chrono::steady_clock::now() + longest;
    int ready = 0;
    do {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        ready = ::poll(waits, std::size(waits), static_cast<int>(std::max<std::int64_t>(left.count(), 0)));
    } while (ready < 0 && errno == EINTR);
    return ready > 0 && waits[0].revents != 0;
}

/// By the administrator: others need not be allowed to.
bool canBeExecuted(const std::string& program) {
    struct stat seen {};
    return program.starts_with('/') && ::stat(program.c_str(), &seen) == 0 && S_ISREG(seen.st_mode) && (seen.st_mode & 0111) != 0;
}

/// Whether the child, which may also just go on, ends now with a code that pkexec has; nothing is collected. A program
/// that ends at once with the same code cannot be told from it.
bool endsLikePkexec(pid_t process) {
    for (int look = 0; look < 20; ++look) {
        siginfo_t info{};
        if (::waitid(P_PID, static_cast<id_t>(process), &info, WEXITED | WNOHANG | WNOWAIT) == 0 && info.si_pid == process)
            return info.si_code != CLD_EXITED || info.si_status == kDismissed || info.si_status == kNotStarted;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
}

}  // namespace

bool PkexecChild::isInstalled() const { return ::access(pkexec_.c_str(), X_OK) == 0; }

PkexecChild::Started PkexecChild::start(const Order& order) const {
    if (!isInstalled()) return {.status = platform::kAuthorizationNotAvailable};
    // Before the person is asked for a password that would be of no use.
    if (!canBeExecuted(order.program) || std::filesystem::path(order.program).filename() == pkexec_.filename())
        return {.status = platform::kAuthorizationToolExecuteFailure};
    const std::string subject = "start " + order.program;
    auto marker = Pipe::open(subject);
    auto output = Pipe::open(subject);
    auto errors = order.readsErrors ? Pipe::open(subject) : Pipe();
    if (!marker || !output || !errors) return {.status = platform::kAuthorizationToolExecuteFailure};

    // A question on a terminal that happens to be there would reach nobody.
    std::vector<std::string> words{"pkexec", "--keep-cwd", "--disable-internal-agent", order.program};
    words.insert(words.end(), order.arguments.begin(), order.arguments.end());
    ChildStart child{.program = pkexec_.string(), .arguments = std::move(words), .standardOutput = output->writeEnd.get()};
    if (order.readsErrors) child.standardError = errors->writeEnd.get();
    child.extra = marker->writeEnd.get();
    child.standardInput = order.input;
    child.withoutInput = true;
    child.directory = order.workingDirectory;
    // It refuses to work for people whose shell is none of the system's.
    child.environment = {{"SHELL", "/bin/sh"}};
    const auto process = child.start(subject);
    if (!process) return {.status = platform::kAuthorizationToolExecuteFailure};
    marker->writeEnd.close();
    const OSStatus status = awaitStart(*process, marker->readEnd.get(), order.stop);
    if (status != platform::kAuthorizationSuccess) return {.status = status};
    return {.status = status, .process = *process, .output = std::move(output->readEnd), .errors = std::move(errors->readEnd)};
}

/// pkexec marks all descriptors but the standard ones to be closed at the moment at which it becomes the program. So
/// the marker is closed by that, or by pkexec's own end; the process's name, which outlives its end, tells which.
OSStatus PkexecChild::awaitStart(pid_t process, int marker, int stop) const {
    if (!markerCloses(marker, longestQuestion_, stop)) {
        // Where that is not allowed, the person has agreed at this very moment.
        if (::kill(process, SIGTERM) == 0) {
            ChildStart::awaitEnd(process);
            return platform::kAuthorizationCanceled;
        }
        markerCloses(marker, longestQuestion_);
    }
    const auto status = ProcessStatus::of(process);
    const bool isPkexec = status && status->name == pkexec_.filename();
    // Systems may hide other people's processes; then only its end tells.
    const bool ended = isPkexec || (!status && endsLikePkexec(process));
    if (!ended) return platform::kAuthorizationSuccess;
    const int waitStatus = ChildStart::awaitEnd(process);
    if (WIFEXITED(waitStatus) && WEXITSTATUS(waitStatus) == kDismissed) return platform::kAuthorizationCanceled;
    return authority_.isThere() ? platform::kAuthorizationDenied : platform::kAuthorizationNotAvailable;
}

}  // namespace halvane::linux
