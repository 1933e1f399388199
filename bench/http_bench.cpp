// What an exchange costs the client: CPU time of this process for each request, the contestants taking
// turns in every round, so that whatever else the machine does falls on all of them.
#include "http_plain_curl.h"
#include "http_server.h"
#include "http_transport.h"

#include <sys/resource.h>
#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <memory>
#include <string>
#include <vector>

namespace halvane::bench {

namespace {

constexpr int kAtATime = 5;

double processCpuMicroseconds() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    const auto microseconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_usec);
    };
    return microseconds(usage.ru_utime) + microseconds(usage.ru_stime);
}

/// Keeps `kAtATime` requests under way until `count` have ended. Microseconds of CPU a request.
double costOf(HttpContestant& contestant, HttpExchange exchange, int count) {
    std::atomic<int> toSend{count - kAtATime};
    std::atomic<int> ended{0};
    std::promise<void> all;
    std::function<void(bool)> next = [&](bool whole) {
        if (!whole) {
            std::fprintf(stderr, "%s: an exchange failed\n", contestant.name().c_str());
            std::exit(1);
        }
        if (toSend.fetch_sub(1) > 0) contestant.send(exchange, std::ref(next));
        if (ended.fetch_add(1) + 1 == count) all.set_value();
    };
    const double before = processCpuMicroseconds();
    for (int i = 0; i < kAtATime; ++i) contestant.send(exchange, std::ref(next));
    all.get_future().wait();
    return (processCpuMicroseconds() - before) / count;
}

double median(std::vector<double> values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

void compare(const std::vector<std::unique_ptr<HttpContestant>>& contestants, HttpExchange exchange, const char* title, int rounds,
             int requests) {
    std::vector<std::vector<double>> costs(contestants.size());
    std::vector<std::vector<double>> ratios(contestants.size());
    for (int round = -1; round < rounds; ++round) {  // the first one only warms up
        for (std::size_t i = 0; i < contestants.size(); ++i) {
            const double cost = costOf(*contestants[i], exchange, requests);
            if (round >= 0) costs[i].push_back(cost);
        }
        for (std::size_t i = 0; round >= 0 && i < contestants.size(); ++i) ratios[i].push_back(costs[i].back() / costs[0].back());
    }
    std::printf("%s, %d at a time: CPU a request, median of %d rounds of %d\n", title, kAtATime, rounds, requests);
    for (std::size_t i = 0; i < contestants.size(); ++i) {
        std::printf("  %-24s %7.1f us   %.2f of %s\n", contestants[i]->name().c_str(), median(costs[i]), median(ratios[i]),
                    contestants[0]->name().c_str());
    }
}

}  // namespace

}  // namespace halvane::bench

/// halvane_http_bench [ROUNDS [REQUESTS]]
int main(int argc, char** argv) {
    using namespace halvane::bench;
    const int rounds = std::max(argc > 1 ? std::atoi(argv[1]) : 15, 1);
    const int requests = std::max(argc > 2 ? std::atoi(argv[2]) : 2000, kAtATime);
    const HttpServer server;
    std::vector<std::unique_ptr<HttpContestant>> contestants;
    contestants.push_back(std::make_unique<PlainCurl>(server.url()));  // the measure comes first
    contestants.push_back(std::make_unique<TransportSession>(server.url()));
    compare(contestants, HttpExchange::Get, "small GET", rounds, requests);
    compare(contestants, HttpExchange::Post, "POST of 1 KB JSON", rounds, requests);
    return 0;
}
