#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <vector>

namespace halvane::device {

/// The running line of the processors' usage: a sweep goes along it in steps of ten, writes the latest samples
/// from there on, and draws a gap of four segments before it. A value; any one thread.
class CpuWave {
public:
    static constexpr std::size_t kPoints = 100;
    static constexpr std::size_t kLeadingZeros = 10;
    static constexpr std::size_t kStep = 10;
    static constexpr std::size_t kGap = 4;
    /// Above the axis, so that what was never written is not seen.
    static constexpr std::uint8_t kUnwritten = 105;

    enum class Color : std::uint8_t { White, Red, Clear };
    struct Point {
        int x;
        int y;
        friend bool operator==(const Point&, const Point&) = default;
    };
    /// Points that hang together in one colour: the first and the last of them.
    struct Run {
        std::size_t first;
        std::size_t last;
        Color color;
        friend bool operator==(const Run&, const Run&) = default;
    };

    CpuWave();

    /// One more sample, in percent. The list begins anew when it holds more than fifty.
    void add(float usage);
    /// Writes the list at the sweep's place and moves the sweep on.
    void advance();

    [[nodiscard]] const std::vector<float>& cpuPercentageDataSources() const { return cpuPercentageDataSources_; }
    /// Grows at every step, by a byte for each entry; the first hundred are the line.
    [[nodiscard]] const std::deque<std::uint8_t>& allValues() const { return allValues_; }
    /// Of the segments; the one of number i leads from point i to the next.
    [[nodiscard]] const std::array<Color, kPoints>& colors() const { return colors_; }
    [[nodiscard]] const std::array<Point, kPoints>& yVals() const { return yVals_; }
    [[nodiscard]] std::size_t index() const { return index_; }

    /// The line in pieces of one colour, from left to right.
    [[nodiscard]] std::vector<Run> runs() const;

private:
    /// Empties the list of samples but for the zeros that lead it.
    void restart();
    void color(std::size_t from, Color color);
    void rebuildPoints();

    std::vector<float> cpuPercentageDataSources_;
    std::deque<std::uint8_t> allValues_;  // grows near its beginning, for as long as the client runs
    std::array<Color, kPoints> colors_{};
    std::array<Point, kPoints> yVals_{};
    std::size_t index_ = 0;
};

}  // namespace halvane::device
