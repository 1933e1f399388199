#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace halvane::bench {

/// What the rounds have measured of one thing.
class Samples {
public:
    void add(double value) { values_.push_back(value); }
    [[nodiscard]] double last() const { return values_.back(); }
    [[nodiscard]] double median() const { return quantile(0.5); }
    [[nodiscard]] double quantile(double share) const {
        std::vector<double> sorted = values_;
        std::ranges::sort(sorted);
        return sorted[static_cast<std::size_t>(share * static_cast<double>(sorted.size() - 1))];
    }

private:
    std::vector<double> values_;
};

}  // namespace halvane::bench
