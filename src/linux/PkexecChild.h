#pragma once

#include "linux/PolkitAuthority.h"
#include "linux/base/Descriptor.h"
#include "platform/AuthorizationServices.h"
#include "util/Result.h"

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

namespace halvane::linux {

/// Runs programs through pkexec and finds out whether they were started: pkexec asks the person, then becomes the
/// program, whose exit codes may be the same as pkexec's own. Any thread.
class PkexecChild {
public:
    struct Order {
        std::string program;  ///< absolute
        std::vector<std::string> arguments;
        std::string workingDirectory;
        bool readsErrors = false;       ///< standard error in a pipe too
        std::optional<int> input = {};  ///< descriptor that the program reads from; absent: from nothing
        int stop = -1;                  ///< descriptor; as soon as it becomes readable the question is taken back
    };
    struct Started {
        platform::OSStatus status = platform::kAuthorizationSuccess;
        pid_t process = -1;  ///< the program's
        Descriptor output;   ///< read end of its standard output
        Descriptor errors;
    };

    /// A person who does not answer for that long has not agreed.
    static constexpr std::chrono::minutes kLongestQuestion{10};

    explicit PkexecChild(PolkitAuthority authority = PolkitAuthority(), std::filesystem::path pkexec = "/usr/bin/pkexec",
                         std::chrono::milliseconds longestQuestion = kLongestQuestion)
        : authority_(std::move(authority)), pkexec_(std::move(pkexec)), longestQuestion_(longestQuestion) {}

    [[nodiscard]] const PolkitAuthority& authority() const { return authority_; }
    [[nodiscard]] bool isInstalled() const;
    /// Blocks until the program runs or will not run.
    [[nodiscard]] Started start(const Order& order) const;

private:
    [[nodiscard]] platform::OSStatus awaitStart(pid_t process, int marker, int stop) const;

    const PolkitAuthority authority_;
    const std::filesystem::path pkexec_;
    const std::chrono::milliseconds longestQuestion_;
};

}  // namespace halvane::linux
