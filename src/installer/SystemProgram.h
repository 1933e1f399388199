#pragma once

#include "util/Bytes.h"
#include "util/Result.h"

#include <filesystem>
#include <string>
#include <vector>

namespace halvane::installer {

/// The package manager's programs, run to their end; without input, in the environment that this process has. Blocks.
class SystemProgram {
public:
    explicit SystemProgram(std::string path) : path_(std::move(path)) {}

    /// What it wrote to standard output. Error: it could not be started, or ended with something else than 0.
    [[nodiscard]] util::Result<util::Bytes> outputOf(const std::vector<std::string>& arguments) const;

    /// Its exit code, or 128 + signal; what of SIGHUP, SIGINT and SIGTERM we ignore does not stop it either. Both outputs go to `log`,
    /// which is made anew: what it starts and leaves behind may keep them open. Error: it could not be started, or no log be made.
    [[nodiscard]] util::Result<int> run(const std::vector<std::string>& arguments, const std::filesystem::path& log) const;

private:
    [[nodiscard]] std::vector<std::string> words(const std::vector<std::string>& arguments) const;

    const std::string path_;
};

}  // namespace halvane::installer
