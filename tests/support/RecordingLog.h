#pragma once

#include "util/Log.h"

#include <algorithm>
#include <mutex>
#include <string>
#include <vector>

namespace halvane::test {

/// Keeps every line, for exact comparison.
class RecordingLog final : public util::Log {
public:
    void write(std::string_view line) override {
        const std::lock_guard lock(mutex_);
        lines_.emplace_back(line);
    }
    [[nodiscard]] std::vector<std::string> lines() const {
        const std::lock_guard lock(mutex_);
        return lines_;
    }
    [[nodiscard]] bool contains(std::string_view part) const {
        const auto all = lines();
        return std::ranges::any_of(all, [part](const std::string& line) { return line.find(part) != std::string::npos; });
    }

private:
    mutable std::mutex mutex_;
    std::vector<std::string> lines_;
};

}  // namespace halvane::test
