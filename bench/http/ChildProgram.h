#pragma once

#include <sys/types.h>
#include <string>
#include <vector>

namespace halvane::bench {

/// A program beside this one, which ends with this object or with this process, whatever ends that.
/// Made on the thread that lives as long as the process does: the system ends the child with its parent's thread.
class ChildProgram {
public:
    /// `command` begins with an absolute path. Throws std::runtime_error.
    explicit ChildProgram(const std::vector<std::string>& command);
    ~ChildProgram();
    ChildProgram(const ChildProgram&) = delete;
    ChildProgram& operator=(const ChildProgram&) = delete;

    [[nodiscard]] bool isRunning();
    /// Waits for its end. What it wrote to its standard output; throws std::runtime_error unless it ended well.
    [[nodiscard]] std::string finish();

private:
    const std::string name_;
    pid_t process_ = -1;  ///< -1 once its end was seen
    int output_ = -1;
    int status_ = 0;
};

}  // namespace halvane::bench
