#pragma once

namespace halvane::device {

/// The part of a chart's length that is shown, after zooming and dragging. A value; any one thread.
class ChartWindow {
public:
    /// Shows all from 0 to `length`, and never less than `least` of it.
    ChartWindow(double length, double least) : length_(length), least_(least), right_(length) {}

    [[nodiscard]] double left() const { return left_; }
    [[nodiscard]] double right() const { return right_; }
    [[nodiscard]] bool showsAll() const { return left_ <= 0 && right_ >= length_; }
    /// Whether zooming in changes nothing any more.
    [[nodiscard]] bool isNarrowest() const { return right_ - left_ <= least_; }

    void showAll();
    /// Makes it `factor` times as wide as it was; what stands at `position` stays in its place, as far as the ends allow.
    void zoom(double position, double factor);
    /// To the right, in the chart's own measure. Answers how far it went: the ends hold it up.
    double move(double distance);

private:
    double length_;
    double least_;
    double left_ = 0;
    double right_;
};

}  // namespace halvane::device
