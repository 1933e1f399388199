#include "linux/PkexecChild.h"

#include "linux/ChildStart.h"
#include "linux/Pipe.h"
#include "linux/ProcessStatus.h"

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>

namespace halvane::linux {

namespace {

using platform::OSStatus;

constexpr int kDismissed = 126;  // pkexec's own exit code; 127 is all else

/// The wait status of a child that ends by itself, now.
int collected(pid_t process) {
    int status = 0;
    while (::waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    return status;
}

bool canBeExecuted(const std::string& program) {
    std::error_code unknown;
    return program.starts_with('/') && std::filesystem::is_regular_file(program, unknown) && ::access(program.c_str(), X_OK) == 0;
}

}  // namespace

bool PkexecChild::isInstalled() const { return ::access(pkexec_.c_str(), X_OK) == 0; }

PkexecChild::Started PkexecChild::start(const Order& order) const {
    if (!isInstalled()) return {.status = platform::kAuthorizationNotAvailable};
    // Before the person is asked for a password that would be of no use.
    if (!canBeExecuted(order.program)) return {.status = platform::kAuthorizationToolExecuteFailure};
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
    child.withoutInput = true;
    child.directory = order.workingDirectory;
    const auto process = child.start(subject);
    if (!process) return {.status = platform::kAuthorizationToolExecuteFailure};
    marker->writeEnd.close();
    const OSStatus status = awaitStart(*process, marker->readEnd.get());
    if (status != platform::kAuthorizationSuccess) return {.status = status};
    return {.status = status, .process = *process, .output = std::move(output->readEnd), .errors = std::move(errors->readEnd)};
}

/// pkexec marks all descriptors but the standard ones to be closed at the moment at which it becomes the program. So
/// the marker is closed by that, or by pkexec's own end; the process's name, which outlives its end, tells which.
OSStatus PkexecChild::awaitStart(pid_t process, int marker) const {
    pollfd wait{marker, POLLIN, 0};
    const auto end = std::chrono::steady_clock::now() + longestQuestion_;
    int ready = 0;
    do {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        ready = ::poll(&wait, 1, static_cast<int>(std::max<std::int64_t>(left.count(), 0)));
    } while (ready < 0 && errno == EINTR);
    if (ready <= 0) {
        ::kill(process, SIGTERM);
        collected(process);
        return platform::kAuthorizationCanceled;
    }
    const auto status = ProcessStatus::of(process);
    if (!status || status->name != pkexec_.filename()) return platform::kAuthorizationSuccess;
    const int waitStatus = collected(process);
    return WIFEXITED(waitStatus) && WEXITSTATUS(waitStatus) == kDismissed ? platform::kAuthorizationCanceled
                                                                          : platform::kAuthorizationDenied;
}

}  // namespace halvane::linux
