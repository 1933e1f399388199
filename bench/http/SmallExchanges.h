#pragma once

#include "Contestants.h"
#include "HttpContestant.h"
#include "Samples.h"

#include <string>
#include <vector>

namespace halvane::bench {

/// What small exchanges cost the client: CPU time of this process for each, and how many it makes in a second. The
/// contestants take turns in every round, so that whatever else the machine does falls on all of them.
class SmallExchanges {
public:
    SmallExchanges(std::string url, int rounds, int requests) : url_(std::move(url)), rounds_(rounds), requests_(requests) {}

    /// Measures and prints. Throws std::runtime_error when an exchange fails.
    void run(HttpExchange exchange, const char* title) const;

private:
    struct Row {
        std::string name;
        Samples microseconds;  ///< of CPU for a request
        Samples costRatios;    ///< to the first contestant's, pair by pair
        Samples rates;         ///< requests a second
        Samples rateRatios;
    };

    [[nodiscard]] std::vector<Row> measure(HttpExchange exchange) const;

    const std::vector<SmallContestant> contestants_ = smallContestants();
    const std::string url_;
    const int rounds_;
    const int requests_;
};

}  // namespace halvane::bench
