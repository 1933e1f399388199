#include "TransferCost.h"

#include "Contestants.h"
#include "ProcessorTime.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace halvane::bench {

namespace {

/// MiB, as /proc says it of this process.
double memory(const std::string& name) {
    std::ifstream lines("/proc/self/status");
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(name + ":")) return std::strtod(line.c_str() + name.size() + 1, nullptr) / 1024;
    }
    throw std::runtime_error("/proc has no " + name);
}

}  // namespace

std::string nameOf(TransferDirection direction) {
    switch (direction) {
        case TransferDirection::Download:
            return "download";
        case TransferDirection::Upload:
            return "upload";
        case TransferDirection::Form:
            return "form";
    }
    return {};
}

TransferDirection directionOf(const std::string& name) {
    for (const auto direction : {TransferDirection::Download, TransferDirection::Upload, TransferDirection::Form}) {
        if (nameOf(direction) == name) return direction;
    }
    throw std::runtime_error("there is no direction " + name);
}

TransferCost TransferCost::measure(const std::string& contestant, TransferDirection direction, const std::string& url,
                                   const std::string& file) {
    const auto entries = largeContestants(direction);
    const auto entry = std::ranges::find(entries, contestant, &LargeContestant::name);
    if (entry == entries.end()) throw std::runtime_error("there is no contestant " + contestant);
    std::ofstream("/proc/self/clear_refs") << "5";  // the peak begins here, not with loading the program
    const double before = memory("VmRSS");
    const auto transfer = entry->make();
    TransferCost cost;
    const double processorBefore = processorTime();
    const auto start = std::chrono::steady_clock::now();
    if (!(direction == TransferDirection::Download ? transfer->download(url, file) : transfer->upload(url, file)))
        throw std::runtime_error(contestant + ": the transfer failed");
    cost.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    cost.processorSeconds = processorTime() - processorBefore;
    cost.memoryGrowth = memory("VmHWM") - before;
    return cost;
}

std::string TransferCost::text() const {
    std::ostringstream stream;
    stream << seconds << ' ' << processorSeconds << ' ' << memoryGrowth << '\n';
    return stream.str();
}

TransferCost TransferCost::fromText(const std::string& text) {
    std::istringstream stream(text);
    TransferCost cost;
    if (!(stream >> cost.seconds >> cost.processorSeconds >> cost.memoryGrowth)) throw std::runtime_error("no cost: " + text);
    return cost;
}

}  // namespace halvane::bench
