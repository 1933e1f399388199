#pragma once

namespace halvane::device {

/// The part of a chart's length that is shown, after zooming and dragging. A value; any one thread.
class ChartWindow {
public:
    /// Shows all from 0 to `length`, and never less than `least` of it.
    ChartWindow(double length, double least) : length_(length), least_(least), width_(length) {}

    [[nodiscard]] double left() const { return left_; }
    [[nodiscard]] double width() const { return width_; }
    [[nodiscard]] double right() const { return left_ + width_; }
    [[nodiscard]] bool showsAll() const { return width_ >= length_; }
    /// Whether zooming in changes nothing any more.
    [[nodiscard]] bool isNarrowest() const { return width_ <= least_; }

    void showAll();
    /// Makes it `factor` times as wide as it was; what stands at `position` stays in its place, as far as the ends allow.
    void zoom(double position, double factor);
    /// To the right, in the chart's own measure. Answers how far it went: the ends hold it up.
    double move(double distance);

private:
    double length_;
    double least_;
    double left_ = 0;
    double width_;
};

}  // namespace halvane::device
