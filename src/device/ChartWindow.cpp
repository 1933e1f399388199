#include "device/ChartWindow.h"

#include <algorithm>

namespace halvane::device {

void ChartWindow::showAll() {
    left_ = 0;
    right_ = length_;
}

void ChartWindow::zoom(double position, double factor) {
    const double before = right_ - left_;
    const double width = std::clamp(before * factor, least_, length_);
    left_ = std::clamp(position - (position - left_) * width / before, 0.0, length_ - width);
    right_ = left_ + width;
}

double ChartWindow::move(double distance) {
    const double possible = std::clamp(distance, -left_, length_ - right_);
    left_ += possible;
    right_ += possible;
    return possible;
}

}  // namespace halvane::device
