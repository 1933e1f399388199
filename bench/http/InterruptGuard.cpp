#include "InterruptGuard.h"

#include <unistd.h>
#include <system_error>
#include <utility>

namespace halvane::bench {

InterruptGuard::InterruptGuard(std::filesystem::path directory) : directory_(std::move(directory)) {
    ::sigemptyset(&signals_);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) ::sigaddset(&signals_, signal);
    ::pthread_sigmask(SIG_BLOCK, &signals_, nullptr);
    thread_ = std::thread([this] { run(); });
}

InterruptGuard::~InterruptGuard() {
    stopped_ = true;
    ::pthread_kill(thread_.native_handle(), SIGINT);
    thread_.join();
}

void InterruptGuard::run() {
    int signal = 0;
    if (::sigwait(&signals_, &signal) != 0 || stopped_) return;
    std::error_code ignored;
    std::filesystem::remove_all(directory_, ignored);
    ::_exit(128 + signal);
}

}  // namespace halvane::bench
