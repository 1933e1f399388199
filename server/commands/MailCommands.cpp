#include "server/Company.h"
#include "server/commands/CommandGroups.h"

#include <iostream>

namespace halvane::server {

namespace {

ExitCode list(const Command::Call& call) {
    for (const std::string& name : call.company.outbox.names()) call.console.out << name << '\n';
    return ExitCode::Done;
}

ExitCode show(const Command::Call& call) {
    std::string name = call.arguments.words().empty() ? "" : call.arguments.words().front();
    if (name.empty()) {
        const auto names = call.company.outbox.names();
        if (names.empty()) return failed(call.console, "the outbox is empty");
        name = names.back();
    }
    const auto mail = call.company.outbox.read(name);
    if (!mail) return failed(call.console, "there is no mail " + name);
    call.console.out << *mail << std::flush;
    return ExitCode::Done;
}

}  // namespace

std::vector<Command> mailCommands() {
    return {
        {.name = "mail list", .synopsis = "", .summary = "Shows the mails that wait to be sent, oldest first.", .options = {}, .run = list},
        {.name = "mail show",
         .synopsis = "[NAME]",
         .summary = "Prints one of them; without a name the newest.",
         .options = {},
         .mostWords = 1,
         .run = show},
    };
}

}  // namespace halvane::server
