#pragma once

#include <cstdint>
#include <string>

namespace halvane::bench {

/// A form is an upload as one part of several, by POST.
enum class TransferDirection : std::uint8_t { Download, Upload, Form };

/// "download", "upload" or "form".
std::string nameOf(TransferDirection direction);
/// Throws std::runtime_error for another name.
TransferDirection directionOf(const std::string& name);

/// What moving one file has cost the process that did it.
struct TransferCost {
    double seconds = 0;
    double processorSeconds = 0;
    double memoryGrowth = 0;  ///< MiB, at its peak, over what was resident before

    /// Does it, in this process, which should be a fresh one. Throws std::runtime_error when it fails.
    static TransferCost measure(const std::string& contestant, TransferDirection direction, const std::string& url,
                                const std::string& file);

    [[nodiscard]] std::string text() const;
    static TransferCost fromText(const std::string& text);
};

}  // namespace halvane::bench
