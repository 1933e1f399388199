// What an exchange costs the client: CPU time of this process for each request, the contestants taking
// turns in every round, so that whatever else the machine does falls on all of them.
#include "http_client.h"
#include "http_plain_curl.h"
#include "http_server.h"
#include "http_transport.h"

#include <sys/resource.h>
#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <functional>
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

double quantile(std::vector<double> values, double share) {
    std::ranges::sort(values);
    return values[static_cast<std::size_t>(share * static_cast<double>(values.size() - 1))];
}

using Maker = std::function<std::unique_ptr<HttpContestant>()>;

struct Costs {
    std::string name;
    std::vector<double> microseconds;
    std::vector<double> ratios;  ///< to the first contestant's, pair by pair
};

/// Every round makes the contestants anew. Where the scheduler puts their threads decides as much as their code does,
/// and a pair of threads keeps its places: rounds with the same ones would all repeat a single throw of the dice.
std::vector<Costs> measure(const std::vector<Maker>& makers, HttpExchange exchange, int rounds, int requests) {
    constexpr int kWarmUp = 100;
    std::vector<Costs> costs(makers.size());
    for (int round = 0; round < rounds; ++round) {
        for (std::size_t turn = 0; turn < makers.size(); ++turn) {
            const std::size_t i = round % 2 == 0 ? turn : makers.size() - 1 - turn;
            const auto contestant = makers[i]();
            costs[i].name = contestant->name();
            costOf(*contestant, exchange, kWarmUp);
            costs[i].microseconds.push_back(costOf(*contestant, exchange, requests));
        }
        for (Costs& one : costs) one.ratios.push_back(one.microseconds.back() / costs[0].microseconds.back());
    }
    return costs;
}

void report(const std::vector<Costs>& all, const char* title, int rounds, int requests) {
    std::printf("%s, %d at a time: CPU a request, median (quartiles) of %d rounds of %d\n", title, kAtATime, rounds, requests);
    for (const Costs& one : all) {
        std::printf("  %-20s %6.1f us (%.1f-%.1f)   ratio %.2f (%.2f-%.2f)\n", one.name.c_str(), quantile(one.microseconds, 0.5),
                    quantile(one.microseconds, 0.25), quantile(one.microseconds, 0.75), quantile(one.ratios, 0.5),
                    quantile(one.ratios, 0.25), quantile(one.ratios, 0.75));
    }
}

}  // namespace

}  // namespace halvane::bench

/// halvane_http_bench [ROUNDS [REQUESTS]]
int main(int argc, char** argv) {
    using namespace halvane::bench;
    const int rounds = std::max(argc > 1 ? std::atoi(argv[1]) : 41, 1);
    const int requests = std::max(argc > 2 ? std::atoi(argv[2]) : 1000, kAtATime);
    const HttpServer server;
    const std::vector<Maker> makers = {
        [&] { return std::make_unique<PlainCurl>(server.url()); },  // the measure comes first
        [&] { return std::make_unique<TransportSession>(server.url()); },
        [&] { return std::make_unique<HttpClient>(server.url()); },
    };
    report(measure(makers, HttpExchange::Get, rounds, requests), "small GET", rounds, requests);
    report(measure(makers, HttpExchange::Post, rounds, requests), "POST of 1 KB JSON", rounds, requests);
    return 0;
}
