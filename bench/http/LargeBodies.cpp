#include "LargeBodies.h"

#include "ChildProgram.h"
#include "RawFile.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <tuple>
#include <utility>

namespace halvane::bench {

namespace {

constexpr std::uint64_t kPiece = 1024UL * 1024;
constexpr std::uint64_t kPieces = 512;

}  // namespace

LargeBodies::LargeBodies(const NginxServer& server, std::filesystem::path directory, std::filesystem::path program, int rounds)
    : server_(server),
      directory_(std::move(directory)),
      program_(std::move(program)),
      source_(server.publicDirectory() / "large"),
      rounds_(rounds) {
    RawFile file(source_, RawFile::Use::Write);
    std::string piece(kPiece, 'x');  // bytes that are there: the system moves the holes of a file more cheaply
    for (std::uint64_t i = 0; i < kPieces; ++i) {
        std::memcpy(piece.data(), &i, sizeof i);
        if (!file.write(piece.data(), piece.size())) throw std::runtime_error("no room for " + source_.string());
    }
}

TransferCost LargeBodies::transfer(const LargeContestant& contestant, TransferDirection direction) const {
    if (direction == TransferDirection::Form) {
        ChildProgram child({program_.string(), "--transfer", contestant.name, nameOf(direction), sink_.url(), source_.string()});
        return TransferCost::fromText(child.finish());
    }
    const bool isDownload = direction == TransferDirection::Download;
    const auto copy = isDownload ? directory_ / "downloaded" : server_.publicDirectory() / "upload" / "large";
    ChildProgram child({program_.string(), "--transfer", contestant.name, nameOf(direction),
                        server_.fileUrl(isDownload ? "large" : "upload/large"), (isDownload ? copy : source_).string()});
    const TransferCost cost = TransferCost::fromText(child.finish());
    check(copy);
    std::filesystem::remove(copy);
    return cost;
}

/// Every piece has its number in front: one that is missing, doubled or displaced shows.
void LargeBodies::check(const std::filesystem::path& copy) const {
    RawFile file(copy, RawFile::Use::Read);
    bool same = file.size() == kPieces * kPiece;
    for (std::uint64_t i = 0; i < kPieces && same; ++i) {
        std::uint64_t number = 0;
        file.seek(i * kPiece);
        same = file.read(reinterpret_cast<char*>(&number), sizeof number) == sizeof number && number == i;
    }
    if (!same) throw std::runtime_error(copy.string() + " is not what was sent");
}

void LargeBodies::run(TransferDirection direction, const char* title) const {
    const auto contestants = largeContestants(direction);
    std::vector<Row> rows(contestants.size());
    // Who is the first to touch memory pays for it, above all on a virtual machine, which asks its host.
    std::ignore = transfer(contestants.front(), direction);
    for (int round = 0; round < rounds_; ++round) {
        for (std::size_t turn = 0; turn < rows.size(); ++turn) {
            const std::size_t i = round % 2 == 0 ? turn : rows.size() - 1 - turn;
            const TransferCost cost = transfer(contestants[i], direction);
            rows[i].name = contestants[i].name;
            rows[i].seconds.add(cost.seconds);
            rows[i].processorSeconds.add(cost.processorSeconds);
            rows[i].growth.add(cost.memoryGrowth);
        }
        for (Row& row : rows) {
            row.timeRatios.add(row.seconds.last() / rows[0].seconds.last());
            row.costRatios.add(row.processorSeconds.last() / rows[0].processorSeconds.last());
        }
    }
    std::printf("\n%s of %d MiB; medians of %d rounds, each transfer in a process of its own\n", title, static_cast<int>(kPieces), rounds_);
    std::printf("  %-20s %8s %7s   %8s %7s   %s\n", "", "seconds", "ratio", "CPU s", "ratio", "memory growth");
    for (const Row& row : rows) {
        std::printf("  %-20s %8.3f %7.2f   %8.3f %7.2f   %9.1f MiB\n", row.name.c_str(), row.seconds.median(), row.timeRatios.median(),
                    row.processorSeconds.median(), row.costRatios.median(), row.growth.median());
    }
    std::fflush(stdout);
}

}  // namespace halvane::bench
