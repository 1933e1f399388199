#include "server/Company.h"
#include "server/commands/CommandGroups.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <iostream>

namespace halvane::server {

namespace {

const char* stateOf(const Computer& computer) {
    if (computer.locked) return computer.lost ? "locked, lost" : "locked";
    return computer.lost ? "lost" : "-";
}

ExitCode list(const Command::Call& call) {
    call.console.out << "SERIAL NUMBER\tHOST\tUSER\tSYSTEM\tMAC\tLAST SEEN\tSTATE\n";
    for (const Computer& computer : call.company.computers.all()) {
        call.console.out << computer.sn << '\t' << computer.hostName << '\t' << computer.userName << '\t' << computer.system << '\t'
                         << computer.mac << '\t' << fmt::format("{:%Y-%m-%dT%H:%M:%SZ}", fmt::gmtime(computer.lastSeen)) << '\t'
                         << stateOf(computer) << '\n';
    }
    return ExitCode::Done;
}

Command marking(const char* verb, const char* done, const char* summary, ComputerStore::Mark mark) {
    return {.name = std::string("computer ") + verb,
            .synopsis = "SERIAL",
            .summary = summary,
            .options = {},
            .fewestWords = 1,
            .mostWords = 1,
            .run = [done, mark](const Command::Call& call) {
                const std::string& sn = call.arguments.words().front();
                if (!call.company.computers.mark(sn, mark)) return failed(call.console, "there is no computer " + sn);
                call.console.out << sn << " is " << done << std::endl;
                return ExitCode::Done;
            }};
}

}  // namespace

std::vector<Command> computerCommands() {
    using Mark = ComputerStore::Mark;
    return {
        {.name = "computer list", .synopsis = "", .summary = "Shows the computers that signed in.", .options = {}, .run = list},
        marking("lock", "locked", "Takes the computer off the network within half a minute.", Mark::Locked),
        marking("unlock", "unlocked", "Ends that; the next sign-in fetches a certificate again.", Mark::Unlocked),
        marking("lost", "lost", "Signs its user out within half a minute.", Mark::Lost),
        marking("found", "found", "Lets its users stay signed in again.", Mark::Found),
    };
}

}  // namespace halvane::server
