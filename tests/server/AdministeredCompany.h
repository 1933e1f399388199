#pragma once

#include "server/RunningCompany.h"
#include "server/commands/Command.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace halvane::test {

/// The command line beside the running server, on the same directory.
class AdministeredCompany : public RunningCompany {
protected:
    struct Outcome {
        server::ExitCode code;
        std::string out;
        std::string err;
    };
    struct Given {
        std::string input;
        std::optional<std::string> password;
    };
    Outcome run(std::vector<std::string> words, const Given& given = {}, bool withData = true);
    static void expectFailure(const Outcome& outcome, server::ExitCode code, const std::string& reason);

    const std::filesystem::path data = directory.path() / "data";
};

}  // namespace halvane::test
