#include "device/ChartWindow.h"

#include <algorithm>

namespace halvane::device {

void ChartWindow::showAll() {
    left_ = 0;
    width_ = length_;
}

void ChartWindow::zoom(double position, double factor) {
    const double before = width_;
    width_ = std::clamp(before * factor, least_, length_);
    left_ = std::clamp(position - (position - left_) * width_ / before, 0.0, length_ - width_);
}

double ChartWindow::move(double distance) {
    const double before = left_;
    left_ = std::clamp(left_ + distance, 0.0, length_ - width_);
    return left_ - before;
}

}  // namespace halvane::device
