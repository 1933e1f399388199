#pragma once

#include <string>
#include <vector>

namespace halvane::test {

/// The server's program as a child of the test; killed when this object goes.
class ServerProcess {
public:
    /// Starts it; `arguments` without the program's name. Its output stays readable, its messages go to `messages`.
    explicit ServerProcess(std::vector<std::string> arguments, const std::string& messages = "/dev/null");
    ~ServerProcess();
    ServerProcess(const ServerProcess&) = delete;
    ServerProcess& operator=(const ServerProcess&) = delete;

    /// The next line of its output without the line feed; empty at its end.
    std::string line();
    /// Waits for its end after an optional signal; the exit code, or minus the signal that ended it.
    int end(int signal = 0);

private:
    int process_ = -1;
    int output_ = -1;
};

}  // namespace halvane::test
