#pragma once

#include "server/commands/Command.h"

#include <vector>

namespace halvane::server {

std::vector<Command> serverCommands();     ///< serve, seed, ca show
std::vector<Command> userCommands();       ///< user add|list|passwd|remove
std::vector<Command> computerCommands();   ///< computer list|lock|unlock|lost|found
std::vector<Command> workplaceCommands();  ///< workplace add|list|remove
std::vector<Command> mailCommands();       ///< mail list|show
std::vector<Command> networkCommands();    ///< radius-cert, profile
std::vector<Command> feedCommands();       ///< feed key|add|list|remove|sign

}  // namespace halvane::server
