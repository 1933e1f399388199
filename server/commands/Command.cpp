#include "server/commands/Command.h"

#include "server/Company.h"
#include "server/commands/CommandGroups.h"

#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <iostream>
#include <system_error>

namespace halvane::server {

namespace {

std::vector<Command> allCommands() {
    std::vector<Command> commands;
    for (auto&& group :
         {serverCommands(), userCommands(), computerCommands(), workplaceCommands(), mailCommands(), networkCommands(), feedCommands()}) {
        commands.insert(commands.end(), group.begin(), group.end());
    }
    return commands;
}

void printHelp(std::ostream& out) {
    out << "halvane-server - the reference company server\n\n"
           "usage: halvane-server COMMAND [--data DIR] ...\n\n";
    for (const Command& command : allCommands()) {
        out << "  " << command.name << (command.synopsis.empty() ? "" : " ") << command.synopsis << "\n      " << command.summary << "\n";
    }
    out << "\n  --help     this text\n  --version\n\n"
           "--data DIR is where the company is kept; HALVANE_SERVER_DATA stands in for it.\n"
           "Passwords are read from HALVANE_PASSWORD, else from the first line of standard input.\n"
           "Several of these commands may use one directory at a time, also while `serve` runs.\n"
           "Exit codes: 0 done, 1 failed, 2 wrong usage.\n";
}

/// The command whose name begins the words, and how many words that takes.
std::optional<std::pair<Command, std::size_t>> commandFor(const std::vector<std::string>& words) {
    const std::string one = words.front();
    const std::string two = words.size() > 1 ? one + " " + words[1] : one;
    for (Command& command : allCommands()) {
        if (command.name == one) return std::pair(std::move(command), std::size_t{1});
        if (command.name == two) return std::pair(std::move(command), std::size_t{2});
    }
    return std::nullopt;
}

/// The administrator may work beside a service that has an account of its own; what is made then belongs to that account. 0, or
/// an errno.
int becomeOwnerOf(const std::string& directory) {
    struct stat status {};
    if (::geteuid() != 0 || ::stat(directory.c_str(), &status) != 0 || status.st_uid == 0) return 0;
    const bool done = ::setgroups(0, nullptr) == 0 && ::setgid(status.st_gid) == 0 && ::setuid(status.st_uid) == 0;
    return done ? 0 : errno;
}

ExitCode runOn(const Command& command, const Arguments& arguments, Console& console) {
    const auto given = arguments.option("--data") ? arguments.option("--data") : console.dataDirectory;
    if (!given || given->empty()) return failed(console, "--data DIR is missing", ExitCode::Usage);
    if (command.data == Command::Data::MustExist && !std::filesystem::exists(*given)) {
        return failed(console, "there is no company in " + *given + "; `serve`, `seed` and `user add` make one");
    }
    if (const int problem = becomeOwnerOf(*given); problem != 0)
        return failed(console, "cannot become the owner of " + *given + ": " + std::generic_category().message(problem));
    try {
        Company company(*given, console.clock);
        return command.run({arguments, company, console});
    } catch (const std::exception& problem) {
        return failed(console, problem.what());
    }
}

}  // namespace

ExitCode failed(Console& console, const std::string& problem, ExitCode code) {
    console.err << "halvane-server: " << problem << std::endl;
    return code;
}

ExitCode runCommandLine(const std::vector<std::string>& words, Console& console) {
    if (words.empty()) {
        printHelp(console.err);
        return ExitCode::Usage;
    }
    if (std::find(words.begin(), words.end(), "--help") != words.end()) {
        printHelp(console.out);
        return ExitCode::Done;
    }
    if (words.front() == "--version") {
        console.out << "halvane-server " HALVANE_VERSION << std::endl;
        return ExitCode::Done;
    }
    auto found = commandFor(words);
    if (!found) return failed(console, "unknown command " + words.front() + "; see --help", ExitCode::Usage);
    auto& [command, length] = *found;

    command.options.emplace_back("--data");
    const auto arguments = Arguments::parse({words.begin() + static_cast<std::ptrdiff_t>(length), words.end()}, command.options);
    if (!arguments) return failed(console, arguments.error().description, ExitCode::Usage);
    const std::size_t count = arguments->words().size();
    if (count < command.fewestWords || count > command.mostWords) {
        return failed(console, "usage: halvane-server " + command.name + " " + command.synopsis, ExitCode::Usage);
    }
    return runOn(command, *arguments, console);
}

}  // namespace halvane::server
