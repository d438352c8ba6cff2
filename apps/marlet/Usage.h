#pragma once

#include "Command.h"

namespace marlet::tool
{

/// Null if there is no such command.
const CommandSpec *FindCommand(const std::string &name);

/// All commands, with a line on each.
std::string GeneralUsage();

/// How one command is called.
std::string CommandUsage(const CommandSpec &command);

} // namespace marlet::tool
