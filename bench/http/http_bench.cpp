// What the client's exchanges cost, beside those of other libraries, all with the same server.
#include "InterruptGuard.h"
#include "NginxServer.h"
#include "SmallExchanges.h"
#include "support/TemporaryDirectory.h"

#include <QCoreApplication>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <vector>

namespace halvane::bench {

namespace {

void run(const std::vector<int>& numbers) {
    const test::TemporaryDirectory directory;
    const InterruptGuard guard(directory.path());
    const NginxServer server(directory.path());
    const SmallExchanges small(server.smallUrl(), numbers[0], numbers[1]);
    small.run(HttpExchange::Get, "small GET");
    small.run(HttpExchange::Post, "POST of 1 KB JSON");
}

}  // namespace

}  // namespace halvane::bench

/// halvane_http_bench [ROUNDS [REQUESTS]]
int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    std::vector<int> numbers{41, 1000};
    for (std::size_t i = 0; i < numbers.size() && static_cast<int>(i) + 1 < argc; ++i) numbers[i] = std::max(std::atoi(argv[i + 1]), 1);
    try {
        halvane::bench::run(numbers);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "halvane_http_bench: %s\n", failure.what());
        return 1;
    }
    return 0;
}
