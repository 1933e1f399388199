#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace halvane::test {

/// What a program left behind.
struct ProgramResult {
    int exitCode = -1;  ///< 128 + signal for one that was killed
    std::string out;
    std::string err;
};

/// A real process of a program, its outputs kept in files. One that still runs is killed when the
/// object goes.
class ChildProgram {
public:
    /// `program`: a path, or a name to be found on PATH. `environment` is added to our own.
    ChildProgram(const std::string& program, const std::vector<std::string>& arguments,
                 const std::vector<std::pair<std::string, std::string>>& environment = {});
    ~ChildProgram();
    ChildProgram(const ChildProgram&) = delete;
    ChildProgram& operator=(const ChildProgram&) = delete;

    /// Waits for the end; a program that takes longer than half a minute is killed and counts as failed.
    ProgramResult wait() { return waitFor(std::chrono::seconds(30)); }
    /// Lets the program run for that long, at the most, and kills it.
    ProgramResult waitFor(std::chrono::milliseconds longest);

private:
    [[nodiscard]] std::filesystem::path output(const char* name) const;

    std::filesystem::path directory_;
    pid_t pid_ = -1;
};

/// The program's result after its end.
ProgramResult runProgram(const std::string& program, const std::vector<std::string>& arguments,
                         const std::vector<std::pair<std::string, std::string>>& environment = {});

/// A path of our own programs, such as "usr/bin/security".
std::string inToolRoot(const std::string& path);

}  // namespace halvane::test
