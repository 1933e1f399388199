#include "BenchMain.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

// The main window's pages beside the least program with a list and five pages: how long a switch takes, the
// first and the later ones, and the memory after all of them were seen. Taken in turns; medians and ratios.

namespace {

using Figures = std::array<double, 3>;

Figures run(const std::filesystem::path& program) {
    // The platform without a display talks about what it cannot do.
    const std::string command = "'" + program.string() + "' 2>/dev/null";
    const std::unique_ptr<FILE, int (*)(FILE*)> output(popen(command.c_str(), "r"), pclose);
    Figures figures{};
    if (!output || std::fscanf(output.get(), "%lf %lf %lf", &figures[0], &figures[1], &figures[2]) != 3)
        throw std::runtime_error(program.string() + " gave no figures");
    return figures;
}

double median(const std::vector<Figures>& rounds, std::size_t index) {
    std::vector<double> values;
    std::ranges::transform(rounds, std::back_inserter(values), [index](const Figures& figures) { return figures[index]; });
    std::ranges::sort(values);
    return values[values.size() / 2];
}

int compare(const std::filesystem::path& directory) {
    constexpr int kRounds = 11;
    std::vector<Figures> ours;
    std::vector<Figures> peers;
    for (int round = 0; round <= kRounds; ++round) {
        const Figures peer = run(directory / "minimal_pages");
        const Figures our = run(directory / "main_pages");
        if (round == 0) continue;  // fills the caches
        peers.push_back(peer);
        ours.push_back(our);
    }
    constexpr const char* kWhat[] = {"first switch", "later switches", "resident"};
    constexpr const char* kUnit[] = {"us", "us", "KiB"};
    for (std::size_t index = 0; index < 3; ++index) {
        const double our = median(ours, index);
        const double peer = median(peers, index);
        std::printf("%-16s main window %8.0f %-3s minimal window %8.0f %-3s ratio %5.2f\n", kWhat[index], our, kUnit[index], peer,
                    kUnit[index], our / peer);
    }
    return 0;
}

}  // namespace

int main(int /*argc*/, char** argv) { return halvane::bench::benchMain("main_window_bench", argv[0], compare); }
