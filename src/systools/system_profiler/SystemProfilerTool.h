#pragma once

#include "systools/Tool.h"

#include <cstdint>
#include <optional>

namespace halvane::systools {

/// Reports on the machine's hardware; of the reports there is one, SPStorageDataType.
class SystemProfilerTool {
public:
    /// `capacity`: bytes of the disk that the system stands on; absent when that cannot be told.
    explicit SystemProfilerTool(std::function<std::optional<std::uint64_t>()> capacity) : capacity_(std::move(capacity)) {}

    /// Arguments that name no report are said to be none and skipped: a caller without a shell hands
    /// over its "| grep" as well. The report is one line with one ":", for callers take what follows it.
    int run(const Arguments& arguments, std::ostream& out, std::ostream& err) const;

private:
    const std::function<std::optional<std::uint64_t>()> capacity_;
};

}  // namespace halvane::systools
