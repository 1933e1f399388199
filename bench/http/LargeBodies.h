#pragma once

#include "Contestants.h"
#include "NginxServer.h"
#include "Samples.h"
#include "SinkServer.h"
#include "TransferCost.h"

#include <filesystem>
#include <string>
#include <vector>

namespace halvane::bench {

/// What moving half a gibibyte costs, to a file and from one. Each transfer has a process of its own, so that time,
/// CPU and memory are its contestant's alone. They take turns.
class LargeBodies {
public:
    /// Makes the file. `program`: of which TransferCost::measure is run with --transfer.
    LargeBodies(const NginxServer& server, std::filesystem::path directory, std::filesystem::path program, int rounds);

    /// Measures and prints. Throws std::runtime_error when a transfer fails or a file is not what was sent.
    void run(TransferDirection direction, const char* title) const;

private:
    struct Row {
        std::string name;
        Samples seconds;
        Samples timeRatios;  ///< to the first contestant's, pair by pair
        Samples processorSeconds;
        Samples costRatios;
        Samples growth;
    };

    [[nodiscard]] TransferCost transfer(const LargeContestant& contestant, TransferDirection direction) const;
    void check(const std::filesystem::path& copy) const;

    const NginxServer& server_;
    const SinkServer sink_;  ///< for forms
    const std::filesystem::path directory_;
    const std::filesystem::path program_;
    const std::filesystem::path source_;
    const int rounds_;
};

}  // namespace halvane::bench
