#pragma once

#include <sys/types.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace halvane::bench {

/// A program that runs beside this one, and what it costs. Ended with this object, politely at first.
class Program {
public:
    /// Its standard error goes nowhere; `keptDescriptor` becomes its number 3. Throws std::runtime_error.
    Program(const std::vector<std::string>& command, const std::vector<std::string>& environment, int keptDescriptor = -1);
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    /// Milliseconds of all threads since its start.
    [[nodiscard]] double processorTime() const;
    /// How often each of its threads went to sleep and woke again.
    using WakeUps = std::map<std::string, std::uint64_t>;
    [[nodiscard]] WakeUps wakeUps() const;
    /// Of all threads that are there now.
    [[nodiscard]] std::uint64_t wakeUpsSince(const WakeUps& before) const;
    /// Bytes in memory, shared libraries included.
    [[nodiscard]] std::uint64_t residentSize() const;
    /// Bytes that no other program shares.
    [[nodiscard]] std::uint64_t privateSize() const;

private:
    [[nodiscard]] std::string file(const std::string& name) const;

    pid_t process_ = -1;
};

}  // namespace halvane::bench
