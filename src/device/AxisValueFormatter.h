#pragma once

#include <string>

namespace halvane::device {

/// The text that stands at a value of an axis. Any thread.
class AxisValueFormatter {
public:
    virtual ~AxisValueFormatter() = default;
    [[nodiscard]] virtual std::string stringForValue(double value) const = 0;
};

}  // namespace halvane::device
