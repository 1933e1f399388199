#pragma once

#include "server/Clock.h"
#include "server/commands/Arguments.h"

#include <filesystem>
#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace halvane::server {

class Company;

enum class ExitCode : int { Done = 0, Failed = 1, Usage = 2 };

/// Where a command reads and writes. A test hands in its own.
struct Console {
    std::istream& in;
    std::ostream& out;
    std::ostream& err;
    Clock clock;
    std::optional<std::string> password;       ///< HALVANE_PASSWORD
    std::optional<std::string> dataDirectory;  ///< HALVANE_SERVER_DATA
};

/// What an administrator can ask for. A plain value.
struct Command {
    enum class Data { MayBeMade, MustExist };
    struct Call {
        const Arguments& arguments;
        Company& company;
        Console& console;
    };

    std::string name;      ///< "user add"
    std::string synopsis;  ///< what follows the name
    std::string summary;
    std::vector<std::string> options;  ///< with their dashes; every one takes a value
    std::size_t fewestWords = 0;
    std::size_t mostWords = 0;
    Data data = Data::MustExist;
    std::function<ExitCode(const Call&)> run;
};

/// "halvane-server: PROBLEM" on standard error.
ExitCode failed(Console& console, const std::string& problem, ExitCode code = ExitCode::Failed);

/// Runs the command line without the program's name. Catches what its parts throw.
ExitCode runCommandLine(const std::vector<std::string>& words, Console& console);

}  // namespace halvane::server
