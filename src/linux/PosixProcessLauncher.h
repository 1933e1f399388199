#pragma once

#include "linux/ChildWatcher.h"
#include "linux/ToolRoot.h"
#include "linux/base/Descriptor.h"
#include "platform/ProcessLauncher.h"

#include <filesystem>

namespace halvane::linux {

/// Child processes by posix_spawn, with no signal blocked or ignored.
///
/// Launch paths go by the ToolRoot. Error codes are those of the system: ENOENT, EACCES, ENOEXEC …
///
/// Any thread. Destroying it, which a termination callback may do, ends no child: callbacks of those
/// that still run never come. A callback that reads the output of another tool is not waited for any longer: its reading
/// ends (ECANCELED), that tool goes on.
class PosixProcessLauncher final : public platform::ProcessLauncher {
public:
    explicit PosixProcessLauncher(std::filesystem::path toolRoot);
    ~PosixProcessLauncher() override;

    /// A tool that writes more than Pipe::kLargestOutput is ended, its output refused (EFBIG).
    /// Returns at end of file, when the child and all that it handed its output to have closed it. The
    /// child itself is collected later.
    util::Result<util::Bytes> readOutput(const platform::ProcessRequest& request) override;
    util::Result<void> launch(const platform::ProcessRequest& request, Termination onTermination) override;

private:
    const ToolRoot toolRoot_;
    const Descriptor ending_;  // readable from the end of this object's life on
    ChildWatcher children_;
};

}  // namespace halvane::linux
