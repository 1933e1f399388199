#include "QueuedRequests.h"

#include "Contestants.h"
#include "SilentServer.h"

#include <malloc.h>
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>

namespace halvane::bench {

namespace {

/// Bytes in use in all arenas, and in the blocks too large for one.
double heapInUse() {
    const auto info = ::mallinfo2();
    return static_cast<double>(info.uordblks) + static_cast<double>(info.hblkhd);
}

double heapOf(const QueueContestant& contestant, const std::string& url, int count) {
    const double before = heapInUse();
    const auto requests = contestant.queueRequests(url, count);
    std::this_thread::sleep_for(std::chrono::milliseconds(300));  // those that may run then have their buffers
    return heapInUse() - before;
}

}  // namespace

void QueuedRequests::run(int count) {
    constexpr int kRunning = 5;
    const SilentServer server;
    std::printf("\n%d requests that wait for their turn\n  %-20s %s\n", count, "", "heap a request");
    for (const QueueContestant& contestant : queueContestants()) {
        heapOf(contestant, server.url(), kRunning);  // what the first use leaves behind
        const double running = heapOf(contestant, server.url(), kRunning);
        const double all = heapOf(contestant, server.url(), kRunning + count);
        std::printf("  %-20s %6.2f KiB\n", contestant.name.c_str(), (all - running) / count / 1024);
    }
    std::fflush(stdout);
}

}  // namespace halvane::bench
