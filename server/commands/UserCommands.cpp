#include "server/Company.h"
#include "server/UserName.h"
#include "server/commands/CommandGroups.h"
#include "server/commands/PasswordInput.h"
#include "server/crypto/PasswordHash.h"

#include <iostream>

namespace halvane::server {

namespace {

ExitCode add(const Command::Call& call) {
    const auto& [arguments, company, console] = call;
    const std::string& typed = arguments.words().front();
    const auto name = UserName::parse(typed);
    if (!name) return failed(console, typed + " is no login name; it must look like chen.xiao@example.com", ExitCode::Usage);
    const std::string workplace = arguments.option("--work-address", "");
    if (!workplace.empty() && !company.workplaces.has(workplace)) return failed(console, "there is no workplace " + workplace);
    const auto password = PasswordInput::read(console);
    if (!password) return failed(console, password.error().description);

    const auto user = company.users.add({.userName = name->full,
                                         .shortName = name->local,
                                         .nickName = arguments.option("--nick-name", name->local),
                                         .departmentName = arguments.option("--department", ""),
                                         .jobNumber = arguments.option("--job-number", ""),
                                         .roleId = arguments.option("--role-id", "1"),
                                         .roleName = arguments.option("--role", "员工"),
                                         .workAddress = workplace},
                                        PasswordHash::of(*password));
    if (!user) return failed(console, "there is a user " + name->full + " or another one called " + name->local);
    console.out << "added " << user->userName << ", number " << user->id << std::endl;
    return ExitCode::Done;
}

ExitCode list(const Command::Call& call) {
    call.console.out << "NUMBER\tUSER\tNICK NAME\tDEPARTMENT\tJOB NUMBER\tROLE\tWORK ADDRESS\n";
    for (const User& user : call.company.users.all()) {
        call.console.out << user.id << '\t' << user.userName << '\t' << user.nickName << '\t' << user.departmentName << '\t'
                         << user.jobNumber << '\t' << user.roleName << '\t' << user.workAddress << '\n';
    }
    return ExitCode::Done;
}

/// Runs `act` on the user whom the first word names.
ExitCode onUser(const Command::Call& call, const std::function<ExitCode(const User&)>& act) {
    const std::string& name = call.arguments.words().front();
    const auto known = call.company.users.findByName(name);
    return known ? act(known->user) : failed(call.console, "there is no user " + name);
}

ExitCode changePassword(const Command::Call& call) {
    return onUser(call, [&call](const User& user) {
        const auto password = PasswordInput::read(call.console);
        if (!password) return failed(call.console, password.error().description);
        call.company.users.setPasswordHash(user.id, PasswordHash::of(*password));
        call.company.sessions.closeAll(user.id);
        call.console.out << "changed the password of " << user.userName << " and ended the user's sessions" << std::endl;
        return ExitCode::Done;
    });
}

ExitCode remove(const Command::Call& call) {
    return onUser(call, [&call](const User& user) {
        call.company.users.remove(user.id);
        call.console.out << "removed " << user.userName << std::endl;
        return ExitCode::Done;
    });
}

}  // namespace

std::vector<Command> userCommands() {
    return {
        {.name = "user add",
         .synopsis = "NAME@DOMAIN [--nick-name N] [--department D] [--job-number J] [--role R] [--role-id I] [--work-address VALUE]",
         .summary = "Adds an employee.",
         .options = {"--nick-name", "--department", "--job-number", "--role", "--role-id", "--work-address"},
         .fewestWords = 1,
         .mostWords = 1,
         .data = Command::Data::MayBeMade,
         .run = add},
        {.name = "user list", .synopsis = "", .summary = "Shows the employees.", .options = {}, .run = list},
        {.name = "user passwd",
         .synopsis = "NAME",
         .summary = "Sets another password and ends the user's sessions.",
         .options = {},
         .fewestWords = 1,
         .mostWords = 1,
         .run = changePassword},
        {.name = "user remove",
         .synopsis = "NAME",
         .summary = "Removes an employee with sessions and certificate.",
         .options = {},
         .fewestWords = 1,
         .mostWords = 1,
         .run = remove},
    };
}

}  // namespace halvane::server
