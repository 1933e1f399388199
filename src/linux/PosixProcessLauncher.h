#pragma once

#include "linux/ChildWatcher.h"
#include "platform/ProcessLauncher.h"

#include <cstddef>
#include <filesystem>

namespace halvane::linux {

/// Child processes by posix_spawn, with no signal blocked or ignored.
///
/// A launch path is taken under the tool root when something stands there. The system's own six
/// tools are looked for nowhere else, since other programs bear their names; every other path is
/// then taken as it stands. Error codes are those of the system: ENOENT, EACCES, ENOEXEC …
///
/// Any thread. Destroying it, which a termination callback may do, ends no child: callbacks of those
/// that still run never come.
class PosixProcessLauncher final : public platform::ProcessLauncher {
public:
    /// A tool that writes more than this is ended, its output refused (EFBIG).
    static constexpr std::size_t kLargestOutput = std::size_t{64} << 20;

    explicit PosixProcessLauncher(std::filesystem::path toolRoot) : toolRoot_(std::move(toolRoot)) {}

    /// Returns at end of file, when the child and all that it handed its output to have closed it. The
    /// child itself is collected later.
    util::Result<util::Bytes> readOutput(const platform::ProcessRequest& request) override;
    util::Result<void> launch(const platform::ProcessRequest& request, Termination onTermination) override;

private:
    [[nodiscard]] std::string programFor(const std::string& launchPath) const;

    const std::filesystem::path toolRoot_;
    ChildWatcher children_;
};

}  // namespace halvane::linux
