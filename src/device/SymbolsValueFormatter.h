#pragma once

#include "device/AxisValueFormatter.h"

namespace halvane::device {

/// The value itself as a whole number, its fraction cut off.
class SymbolsValueFormatter final : public AxisValueFormatter {
public:
    [[nodiscard]] std::string stringForValue(double value) const override { return std::to_string(static_cast<long>(value)); }
};

}  // namespace halvane::device
