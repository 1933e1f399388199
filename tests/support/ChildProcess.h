#pragma once

#include <sys/types.h>

#include <string>
#include <utility>
#include <vector>

namespace halvane::test {

/// A program that the test starts, found by PATH. It ends with this object, and with the thread that
/// made it, however that ends. It gets `input` whole as its standard input (a few lines: it must fit
/// into a pipe), and the test's own environment with `environment` added.
class ChildProcess {
public:
    explicit ChildProcess(std::vector<std::string> arguments, std::vector<std::pair<std::string, std::string>> environment = {},
                          const std::string& input = {});
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    [[nodiscard]] pid_t pid() const { return pid_; }
    /// The next line of its standard output, without the line feed; empty at end of file.
    std::string readLine();

private:
    pid_t pid_ = -1;
    int output_ = -1;
};

}  // namespace halvane::test
