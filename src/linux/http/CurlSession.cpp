#include "linux/http/CurlSession.h"

#include "linux/http/NetworkLoop.h"

#include <pthread.h>
#include <csignal>
#include <stdexcept>
#include <utility>

namespace halvane::linux_http {

namespace {

/// Signals belong to the program's own threads; SIGPIPE from a broken TLS connection, which libcurl leaves
/// to us, must not end the process.
class SignalsBlocked {
public:
    SignalsBlocked() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before_);
    }
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

private:
    sigset_t before_{};
};

}  // namespace

CurlSession::CurlSession(platform::HttpSessionConfiguration configuration, std::uint64_t largestBody)
    : queue_(configuration.resultQueue), board_(std::make_shared<TaskBoard>(queue_, configuration.maximumConcurrentTasks)) {
    if (!queue_) throw std::invalid_argument("a session needs a queue for its results");
    auto loop = std::make_unique<NetworkLoop>(board_, std::move(configuration), largestBody);
    const SignalsBlocked inherited;
    thread_ = std::thread([loop = std::move(loop)]() mutable {
        pthread_setname_np(pthread_self(), "halvane-http");
        loop->run();
        loop.reset();
    });
}

CurlSession::~CurlSession() {
    board_->close();
    if (thread_.get_id() == std::this_thread::get_id()) {
        thread_.detach();
    } else {
        thread_.join();
    }
}

std::shared_ptr<platform::HttpTask> CurlSession::dataTask(platform::HttpRequest request, platform::HttpDataHandlers handlers,
                                                          std::shared_ptr<void> context) {
    return board_->add(std::move(request), std::move(handlers), std::move(context));
}

std::shared_ptr<platform::HttpTask> CurlSession::downloadTask(platform::HttpRequest request, platform::HttpDownloadHandlers handlers,
                                                              std::shared_ptr<void> context) {
    return board_->add(std::move(request), std::move(handlers), std::move(context));
}

}  // namespace halvane::linux_http
