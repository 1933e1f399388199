#include "qt/QtSignals.h"

#include <fcntl.h>
#include <unistd.h>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <system_error>
#include <utility>

namespace halvane::qt {

namespace {

constexpr int kHandled[] = {SIGTERM, SIGINT};
std::atomic<int> writeEnd{-1};  // what the handler writes to
static_assert(std::atomic<int>::is_always_lock_free);

void writeToPipe(int) {
    const int interrupted = errno;
    const char byte = 1;
    // A full pipe already says enough.
    [[maybe_unused]] const auto written = ::write(writeEnd.load(), &byte, 1);
    errno = interrupted;
}

void setHandler(void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (const int number : kHandled) sigaction(number, &action, nullptr);
}

}  // namespace

QtSignals::Pipe::Pipe() {
    if (::pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) throw std::system_error(errno, std::generic_category(), "pipe for signals");
}

QtSignals::Pipe::~Pipe() {
    ::close(ends[0]);
    ::close(ends[1]);
}

QtSignals::QtSignals(std::function<void()> onTerminate) : notifier_(pipe_.ends[0], QSocketNotifier::Read) {
    QObject::connect(&notifier_, &QSocketNotifier::activated, [this, onTerminate = std::move(onTerminate)] {
        char byte = 0;
        if (::read(pipe_.ends[0], &byte, 1) == 1) onTerminate();
    });
    writeEnd = pipe_.ends[1];
    setHandler(writeToPipe);
}

QtSignals::~QtSignals() {
    setHandler(SIG_DFL);
    writeEnd = -1;
}

}  // namespace halvane::qt
