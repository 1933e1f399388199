#include "server/Company.h"
#include "server/commands/CommandGroups.h"
#include "util/Text.h"

#include <algorithm>
#include <iostream>

namespace halvane::server {

namespace {

/// The client puts values into an address as they are.
bool isPlain(const std::string& value) {
    return !value.empty() && std::all_of(value.begin(), value.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '_' || c == '.';
    });
}

ExitCode add(const Command::Call& call) {
    const Workplace workplace{call.arguments.words()[0], call.arguments.words()[1]};
    if (!isPlain(workplace.value)) return failed(call.console, "a value is made of ASCII letters, digits and \"-_.\"", ExitCode::Usage);
    if (workplace.name.empty() || !util::isValidUtf8(workplace.name))
        return failed(call.console, "the name is not UTF-8 text", ExitCode::Usage);
    call.company.workplaces.put(workplace);
    call.console.out << "added " << workplace.value << std::endl;
    return ExitCode::Done;
}

ExitCode list(const Command::Call& call) {
    call.console.out << "VALUE\tNAME\n";
    for (const auto& [value, name] : call.company.workplaces.all()) call.console.out << value << '\t' << name << '\n';
    return ExitCode::Done;
}

ExitCode remove(const Command::Call& call) {
    const std::string& value = call.arguments.words().front();
    if (!call.company.workplaces.remove(value)) return failed(call.console, "there is no workplace " + value);
    call.console.out << "removed " << value << std::endl;
    return ExitCode::Done;
}

}  // namespace

std::vector<Command> workplaceCommands() {
    return {
        {.name = "workplace add",
         .synopsis = "VALUE NAME",
         .summary = "Adds an office, or renames it.",
         .options = {},
         .fewestWords = 2,
         .mostWords = 2,
         .data = Command::Data::MayBeMade,
         .run = add},
        {.name = "workplace list", .synopsis = "", .summary = "Shows the offices.", .options = {}, .run = list},
        {.name = "workplace remove",
         .synopsis = "VALUE",
         .summary = "Removes an office.",
         .options = {},
         .fewestWords = 1,
         .mostWords = 1,
         .run = remove},
    };
}

}  // namespace halvane::server
