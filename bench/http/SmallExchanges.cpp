#include "SmallExchanges.h"

#include "ProcessorTime.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <functional>
#include <future>
#include <stdexcept>

namespace halvane::bench {

namespace {

constexpr int kAtATime = 5;

struct Cost {
    double processorSeconds = 0;
    double seconds = 0;
};

/// Keeps `kAtATime` requests under way until `count` have ended.
Cost costOf(const SmallContestant& entry, HttpContestant& contestant, HttpExchange exchange, int count) {
    std::atomic<int> toSend{count - kAtATime};
    std::atomic<int> underWay{kAtATime};
    std::atomic<bool> failed{false};
    std::promise<void> all;
    std::function<void(bool)> next = [&](bool whole) {
        if (!whole) failed = true;
        if (!failed && toSend.fetch_sub(1) > 0) {
            contestant.send(exchange, std::ref(next));
        } else if (underWay.fetch_sub(1) == 1) {
            all.set_value();
        }
    };
    const double before = processorTime();
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < kAtATime; ++i) contestant.send(exchange, std::ref(next));
    all.get_future().wait();
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    if (failed) throw std::runtime_error(entry.name + ": an exchange failed");
    return {processorTime() - before, took.count()};
}

}  // namespace

/// Every round makes the contestants anew. Where the scheduler puts their threads decides as much as their code does,
/// and a pair of threads keeps its places: rounds with the same ones would all repeat a single throw of the dice.
std::vector<SmallExchanges::Row> SmallExchanges::measure(HttpExchange exchange) const {
    constexpr int kWarmUp = 100;
    const int requests = std::max(requests_, kAtATime);
    std::vector<Row> rows(contestants_.size());
    for (int round = 0; round < rounds_; ++round) {
        for (std::size_t turn = 0; turn < rows.size(); ++turn) {
            const std::size_t i = round % 2 == 0 ? turn : rows.size() - 1 - turn;
            const auto contestant = contestants_[i].make(url_);
            rows[i].name = contestants_[i].name;
            costOf(contestants_[i], *contestant, exchange, kWarmUp);
            const Cost cost = costOf(contestants_[i], *contestant, exchange, requests);
            rows[i].microseconds.add(cost.processorSeconds * 1e6 / requests);
            rows[i].rates.add(requests / cost.seconds);
        }
        for (Row& row : rows) {
            row.costRatios.add(row.microseconds.last() / rows[0].microseconds.last());
            row.rateRatios.add(row.rates.last() / rows[0].rates.last());
        }
    }
    return rows;
}

void SmallExchanges::run(HttpExchange exchange, const char* title) const {
    const auto rows = measure(exchange);
    std::printf("\n%s, %d at a time; medians (and quartiles) of %d rounds of %d\n", title, kAtATime, rounds_, requests_);
    std::printf("  %-20s %-23s %-18s   %-23s %s\n", "", "CPU us a request", "ratio", "requests a second", "ratio");
    for (const Row& row : rows) {
        std::printf("  %-20s %6.1f (%6.1f-%6.1f)  %5.2f (%.2f-%.2f)    %6.0f (%6.0f-%6.0f)  %5.2f (%.2f-%.2f)\n", row.name.c_str(),
                    row.microseconds.median(), row.microseconds.quantile(0.25), row.microseconds.quantile(0.75), row.costRatios.median(),
                    row.costRatios.quantile(0.25), row.costRatios.quantile(0.75), row.rates.median(), row.rates.quantile(0.25),
                    row.rates.quantile(0.75), row.rateRatios.median(), row.rateRatios.quantile(0.25), row.rateRatios.quantile(0.75));
    }
    std::fflush(stdout);
}

}  // namespace halvane::bench
