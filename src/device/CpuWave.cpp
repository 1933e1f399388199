#include "device/CpuWave.h"

#include <algorithm>
#include <iterator>

namespace halvane::device {

namespace {

constexpr std::size_t kMostSamples = 50;

/// A fraction is cut off. What no ratio can be, and no number, is brought back into a byte.
std::uint8_t entryOf(float usage) {
    if (!(usage > 0)) return 0;
    return static_cast<std::uint8_t>(std::min(usage, 255.0F));
}

}  // namespace

CpuWave::CpuWave() : allValues_(kPoints, kUnwritten) {
    colors_.fill(Color::Red);
    color(0, Color::White);
    rebuildPoints();
    restart();
}

void CpuWave::restart() { cpuPercentageDataSources_.assign(kLeadingZeros, 0); }

void CpuWave::add(float usage) {
    if (cpuPercentageDataSources_.size() > kMostSamples) restart();
    cpuPercentageDataSources_.push_back(usage);
}

void CpuWave::advance() {
    const auto& samples = cpuPercentageDataSources_;
    const auto place = [this](std::size_t at) { return allValues_.begin() + static_cast<std::ptrdiff_t>(at); };
    // The list is never shorter than what it replaces.
    const auto rest = samples.begin() + static_cast<std::ptrdiff_t>(kStep);
    std::transform(samples.begin(), rest, place(index_), entryOf);
    std::vector<std::uint8_t> more;
    std::transform(rest, samples.end(), std::back_inserter(more), entryOf);
    allValues_.insert(place(index_ + kStep), more.begin(), more.end());

    color(index_, Color::Red);
    index_ = (index_ + kStep) % kPoints;
    color(index_, Color::Clear);
    rebuildPoints();
}

void CpuWave::color(std::size_t from, Color color) { std::fill_n(colors_.begin() + static_cast<std::ptrdiff_t>(from), kGap, color); }

void CpuWave::rebuildPoints() {
    for (std::size_t i = 0; i < kPoints; ++i) yVals_[i] = {static_cast<int>(i), allValues_[i]};
}

std::vector<CpuWave::Run> CpuWave::runs() const {
    std::vector<Run> found;
    constexpr std::size_t kSegments = kPoints - 1;
    for (std::size_t segment = 0; segment < kSegments; ++segment) {
        if (!found.empty() && found.back().color == colors_[segment]) {
            found.back().last = segment + 1;
        } else {
            found.push_back({segment, segment + 1, colors_[segment]});
        }
    }
    return found;
}

}  // namespace halvane::device
