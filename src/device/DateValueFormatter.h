#pragma once

#include "device/AxisValueFormatter.h"

#include <vector>

namespace halvane::device {

/// Names the values of an axis from a list: that of 2.9 is the third. Beyond the list there is no text.
class DateValueFormatter final : public AxisValueFormatter {
public:
    explicit DateValueFormatter(std::vector<std::string> texts) : texts_(std::move(texts)) {}

    [[nodiscard]] std::string stringForValue(double value) const override {
        // "-0.5" is cut to the first as well.
        if (!(value > -1 && value < static_cast<double>(texts_.size()))) return {};
        return texts_[static_cast<std::size_t>(static_cast<long>(value))];
    }

private:
    std::vector<std::string> texts_;
};

}  // namespace halvane::device
