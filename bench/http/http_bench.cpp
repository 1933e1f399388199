// What the client's exchanges cost, beside those of other libraries, all with the same server.
#include "InterruptGuard.h"
#include "LargeBodies.h"
#include "NginxServer.h"
#include "QueuedRequests.h"
#include "SmallExchanges.h"
#include "TransferCost.h"
#include "support/TemporaryDirectory.h"

#include <QCoreApplication>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <string>
#include <vector>

namespace halvane::bench {

namespace {

struct Rounds {
    int small = 41;
    int requests = 1000;
    int large = 5;
};

/// In memory where there is room: a disk would be the slowest of all that is measured here.
std::filesystem::path placeForFiles() {
    constexpr std::uintmax_t kRoom = 2ULL << 30;  // the file, a copy of it, and a margin
    std::error_code error;
    const auto space = std::filesystem::space("/dev/shm", error);
    return !error && space.available >= kRoom ? "/dev/shm" : std::filesystem::temp_directory_path();
}

void compare(const Rounds& rounds) {
    const test::TemporaryDirectory directory(placeForFiles());
    const InterruptGuard guard(directory.path());
    const NginxServer server(directory.path());
    const SmallExchanges small(server.smallUrl(), rounds.small, rounds.requests);
    small.run(HttpExchange::Get, "small GET");
    small.run(HttpExchange::Post, "POST of 1 KB JSON");
    const LargeBodies large(server, directory.path(), std::filesystem::canonical("/proc/self/exe"), rounds.large);
    large.run(TransferDirection::Download, "download to a file");
    large.run(TransferDirection::Upload, "upload from a file");
    large.run(TransferDirection::Form, "upload of a form with a file");
    constexpr int kQueued = 10'000;
    QueuedRequests::run(kQueued);
}

void transfer(const std::vector<std::string>& arguments) {
    std::fputs(TransferCost::measure(arguments[2], directionOf(arguments[3]), arguments[4], arguments[5]).text().c_str(), stdout);
}

}  // namespace

}  // namespace halvane::bench

/// halvane_http_bench [ROUNDS [REQUESTS [LARGE_ROUNDS]]]
/// halvane_http_bench --transfer CONTESTANT download|upload|form URL FILE: how it runs itself
int main(int argc, char** argv) {
    using namespace halvane::bench;
    const QCoreApplication application(argc, argv);
    const std::vector<std::string> arguments(argv, argv + argc);
    try {
        if (arguments.size() == 6 && arguments[1] == "--transfer") {
            transfer(arguments);
            return 0;
        }
        const auto number = [&](std::size_t i, int usual) {
            return i < arguments.size() ? std::max(std::atoi(arguments[i].c_str()), 1) : usual;
        };
        const Rounds usual;
        compare({number(1, usual.small), number(2, usual.requests), number(3, usual.large)});
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "halvane_http_bench: %s\n", failure.what());
        return 1;
    }
    return 0;
}
