#pragma once

#include "linux/http/SocketTable.h"
#include "linux/http/TaskBoard.h"
#include "linux/http/TlsGate.h"
#include "linux/http/Transfer.h"

#include <curl/curl.h>

#include <memory>
#include <vector>

namespace halvane::linux_http {

/// A session's network thread: everything that touches libcurl happens in `run`.
class NetworkLoop {
public:
    /// Keeps board and queue alive while it runs.
    NetworkLoop(std::shared_ptr<TaskBoard> board, platform::HttpSessionConfiguration configuration, std::uint64_t largestBody);

    /// Until the board is closed and every transfer has ended.
    void run();

private:
    struct CleanupMulti {
        void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
    };
    using Clock = Transfer::Clock;

    void start(const std::vector<std::shared_ptr<CurlTask>>& tasks);
    void cancel(const std::vector<std::shared_ptr<CurlTask>>& tasks);
    void perform();
    void collect();
    void watchIdleTimes();
    void sleep();
    std::unique_ptr<Transfer> unusedTransfer();
    /// Takes the transfer from libcurl and puts its task among the ended ones.
    void end(std::size_t running);
    [[nodiscard]] bool sharesConnection(const Transfer& transfer) const;

    const std::shared_ptr<TaskBoard> board_;
    const std::shared_ptr<platform::DispatchQueue> queue_;
    // Destroyed from below: libcurl closes its connections with what stands above it here.
    TlsGate tls_;
    SocketTable sockets_;
    TransferContext context_;
    std::unique_ptr<CURLM, CleanupMulti> multi_;
    std::vector<std::unique_ptr<Transfer>> unused_;
    std::vector<std::unique_ptr<Transfer>> running_;
    std::vector<TaskBoard::Ended> ended_;
    Clock::time_point now_ = Clock::now();
};

}  // namespace halvane::linux_http
