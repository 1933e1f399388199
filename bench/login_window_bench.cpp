#include "BenchMain.h"
#include "WindowProbe.h"
#include "support/TemporaryDirectory.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>

// The login window beside the least program of its kind: time from start to first paint, processor time
// and resident memory, taken in turns on one display. Medians and their ratios are printed.

namespace {

using halvane::bench::WindowProbe;

double median(std::vector<double> values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

std::vector<std::string> surroundings(const std::filesystem::path& home) {
    std::vector<std::string> list{"HOME=" + home.string(), "XDG_RUNTIME_DIR=" + home.string(), "LANG=C.UTF-8", "QT_QPA_PLATFORM=xcb",
                                  "DBUS_SESSION_BUS_ADDRESS=disabled:"};
    for (const char* name : {"PATH", "QT_SCALE_FACTOR", "HALVANE_TOOL_ROOT"}) {
        if (const char* value = std::getenv(name)) list.push_back(std::string(name) + "=" + value);
    }
    return list;
}

void report(const char* what, const char* unit, const std::vector<WindowProbe::Start>& ours, const std::vector<WindowProbe::Start>& peers,
            const std::function<double(const WindowProbe::Start&)>& figure, double goal) {
    const auto figures = [&](const std::vector<WindowProbe::Start>& starts) {
        std::vector<double> list;
        std::ranges::transform(starts, std::back_inserter(list), figure);
        return median(list);
    };
    const double our = figures(ours);
    const double peer = figures(peers);
    std::printf("%-16s login window %8.1f %-3s minimal window %8.1f %-3s ratio %5.2f", what, our, unit, peer, unit, our / peer);
    goal > 0 ? std::printf("  (goal %.1f)\n", goal) : std::printf("\n");
}

int run(const std::filesystem::path& directory) {
    constexpr int kRounds = 11;
    constexpr double kMebibyte = 1024.0 * 1024.0;
    const halvane::test::TemporaryDirectory home;
    std::vector<WindowProbe::Start> ours;
    std::vector<WindowProbe::Start> peers;
    {
        WindowProbe probe;
        const auto environment = surroundings(home.path());
        for (int round = 0; round <= kRounds; ++round) {
            const auto peer = probe.measure({directory / "minimal_window"}, environment);
            const auto our = probe.measure({directory / "halvane"}, environment);
            if (round == 0) continue;  // fills the caches
            peers.push_back(peer);
            ours.push_back(our);
        }
    }
    report(
        "first paint", "ms", ours, peers, [](const auto& start) { return start.firstPaint; }, 1.4);
    report(
        "resident", "MiB", ours, peers, [](const auto& start) { return static_cast<double>(start.resident) / kMebibyte; }, 1.5);
    report(
        "private memory", "MiB", ours, peers, [](const auto& start) { return static_cast<double>(start.privateSize) / kMebibyte; }, 0);
    report(
        "processor time", "ms", ours, peers, [](const auto& start) { return start.cpu; }, 0);
    return 0;
}

}  // namespace

int main(int /*argc*/, char** argv) { return halvane::bench::benchMain("login_window_bench", argv[0], run); }
